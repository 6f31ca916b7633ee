#pragma once

#include "kernel/KFile.h"
#include "kernel/KMemory.h"
#include "kernel/KThing.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <vector>

// Class streams in memory, for the persistence tests.
namespace streams {

// What the object writes of itself.
inline std::vector<uint8_t> of(KThing& object)
{
    KFile file;
    file.setMode(KFileModeMemory);
    object.writeToFile(file, 1);
    auto* data = static_cast<const uint8_t*>(file.getMemoryData());
    return std::vector<uint8_t>(data, data + file.getMemorySize());
}

// A read-buffered file over a copy of the bytes, as documents are read.
inline void openOver(KFile& file, const std::vector<uint8_t>& bytes)
{
    file.setMode(KFileModeReadBuffered);
    void* block = KMemory::allocate(std::max<size_t>(bytes.size(), 1), false);
    if (!bytes.empty())
        std::memcpy(block, bytes.data(), bytes.size());
    file.openFromRAM(block, int32_t(bytes.size()));
}

inline void appendLongs(std::vector<uint8_t>& bytes, std::initializer_list<uint32_t> longs)
{
    for (uint32_t value : longs) {
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes.push_back(uint8_t(value >> shift));
    }
}

inline void appendShorts(std::vector<uint8_t>& bytes, std::initializer_list<uint16_t> shorts)
{
    for (uint16_t value : shorts) {
        bytes.push_back(uint8_t(value >> 8));
        bytes.push_back(uint8_t(value));
    }
}

inline void append(std::vector<uint8_t>& bytes, const std::vector<uint8_t>& more)
{
    bytes.insert(bytes.end(), more.begin(), more.end());
}

inline uint32_t longAt(const std::vector<uint8_t>& bytes, size_t at)
{
    return uint32_t(bytes[at]) << 24 | uint32_t(bytes[at + 1]) << 16 | uint32_t(bytes[at + 2]) << 8 | bytes[at + 3];
}

inline void putLongAt(std::vector<uint8_t>& bytes, size_t at, uint32_t value)
{
    for (int i = 0; i < 4; ++i)
        bytes[at + size_t(i)] = uint8_t(value >> (24 - 8 * i));
}

inline double doubleAt(const std::vector<uint8_t>& bytes, size_t at)
{
    uint64_t bits = 0;
    for (size_t i = 0; i < 8; ++i)
        bits = bits << 8 | bytes[at + i];
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

inline void putDoubleAt(std::vector<uint8_t>& bytes, size_t at, double value)
{
    uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof value);
    for (size_t i = 0; i < 8; ++i)
        bytes[at + i] = uint8_t(bits >> (56 - 8 * i));
}

// Little-endian, as inside a BMP.
inline uint32_t leLongAt(const std::vector<uint8_t>& bytes, size_t at)
{
    return uint32_t(bytes[at]) | uint32_t(bytes[at + 1]) << 8 | uint32_t(bytes[at + 2]) << 16
           | uint32_t(bytes[at + 3]) << 24;
}

inline void putLeLongAt(std::vector<uint8_t>& bytes, size_t at, uint32_t value)
{
    for (int i = 0; i < 4; ++i)
        bytes[at + size_t(i)] = uint8_t(value >> (8 * i));
}

} // namespace streams
