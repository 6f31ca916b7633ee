#pragma once

#include "kernel/KClass.h"
#include "kernel/KFile.h"
#include "kernel/KMemory.h"
#include "kernel/KThing.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

// Helpers of the persistence, document and inspector tests.
namespace persistencetest {

// Expected streams, spelled out field by field in the file's byte order.
class Bytes {
public:
    Bytes& l(int32_t value)
    {
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes.push_back(uint8_t(uint32_t(value) >> shift));
        return *this;
    }
    Bytes& s(int16_t value)
    {
        bytes.push_back(uint8_t(uint16_t(value) >> 8));
        bytes.push_back(uint8_t(value));
        return *this;
    }
    Bytes& b(uint8_t value)
    {
        bytes.push_back(value);
        return *this;
    }
    Bytes& d(double value)
    {
        uint64_t bits;
        std::memcpy(&bits, &value, 8);
        for (int shift = 56; shift >= 0; shift -= 8)
            bytes.push_back(uint8_t(bits >> shift));
        return *this;
    }
    Bytes& text(const char* characters)
    {
        bytes.insert(bytes.end(), characters, characters + std::strlen(characters));
        return *this;
    }
    Bytes& append(const std::vector<uint8_t>& more)
    {
        bytes.insert(bytes.end(), more.begin(), more.end());
        return *this;
    }
    // A class stream head: class id, version 1, body size, section count.
    Bytes& frame(const char* className, int32_t bodySize, int32_t sections = 1)
    {
        return l(KClass::computeClassID(className)).l(1).l(bodySize).l(sections);
    }
    Bytes& section(int32_t id, int32_t length) { return l(id).l(length); }

    operator const std::vector<uint8_t>&() const { return bytes; }
    const std::vector<uint8_t>& get() const { return bytes; }

private:
    std::vector<uint8_t> bytes;
};

inline int32_t idOf(const char* className) { return KClass::computeClassID(className); }

// What writeToFile(F, 1) of `object` writes, collected in memory.
inline std::vector<uint8_t> streamOf(KThing& object)
{
    KFile file;
    file.setMode(KFileModeMemory);
    object.writeToFile(file, 1);
    auto* data = static_cast<const uint8_t*>(file.getMemoryData());
    return data ? std::vector<uint8_t>(data, data + file.getMemorySize()) : std::vector<uint8_t>();
}

// A read-buffered file over a copy of `bytes`.
class RamFile {
public:
    explicit RamFile(const std::vector<uint8_t>& bytes)
    {
        auto* image = static_cast<uint8_t*>(KMemory::allocate(std::max<size_t>(bytes.size(), 1), false));
        if (!bytes.empty())
            std::memcpy(image, bytes.data(), bytes.size());
        file.setMode(KFileModeReadBuffered);
        file.openFromRAM(image, int32_t(bytes.size()));
    }
    KFile& operator*() { return file; }
    KFile* operator->() { return &file; }

private:
    KFile file;
};

// Reads `bytes` into `object`; the file's error afterwards.
inline int32_t readInto(KThing& object, const std::vector<uint8_t>& bytes, int32_t* position = nullptr)
{
    RamFile in(bytes);
    object.readFromFile(*in);
    if (position)
        *position = in->getPosition();
    return in->getError();
}

// Replaces the first occurrence of the long `from` by `to`.
inline bool patchLong(std::vector<uint8_t>& bytes, int32_t from, int32_t to)
{
    std::vector<uint8_t> needle = Bytes().l(from).get();
    auto at = std::search(bytes.begin(), bytes.end(), needle.begin(), needle.end());
    if (at == bytes.end())
        return false;
    std::vector<uint8_t> replacement = Bytes().l(to).get();
    std::copy(replacement.begin(), replacement.end(), at);
    return true;
}

} // namespace persistencetest
