#include "kmultimedia/KWavFormat.h"

#include <cstring>

namespace {

void put16(uint8_t* at, uint32_t value)
{
    at[0] = uint8_t(value);
    at[1] = uint8_t(value >> 8);
}

void put32(uint8_t* at, uint32_t value)
{
    put16(at, value);
    put16(at + 2, value >> 16);
}

uint32_t get16(const uint8_t* at) { return uint32_t(at[0]) | uint32_t(at[1]) << 8; }
uint32_t get32(const uint8_t* at) { return get16(at) | get16(at + 2) << 16; }

} // namespace

KWavFormat KWavFormat::forRecording(bool deviceHas16BitMono22k)
{
    if (deviceHas16BitMono22k)
        return { 1, 22050, 16 };
    return { 1, 11025, 8 };
}

std::array<uint8_t, KWavFormat::kHeaderSize> KWavFormat::header(uint32_t dataBytes) const
{
    std::array<uint8_t, kHeaderSize> out {};
    uint8_t* at = out.data();
    std::memcpy(at, "RIFF", 4);
    // A size of 0 stays 0: the mark of a file still being written.
    put32(at + 4, dataBytes ? dataBytes + uint32_t(kHeaderSize) - 8 : 0);
    std::memcpy(at + 8, "WAVEfmt ", 8);
    put32(at + 16, 16);
    put16(at + 20, 1);
    put16(at + 22, uint32_t(channels));
    put32(at + 24, uint32_t(sampleRate));
    put32(at + 28, uint32_t(bytesPerSecond()));
    put16(at + 32, uint32_t(blockAlign()));
    put16(at + 34, uint32_t(bitsPerSample));
    std::memcpy(at + 36, "data", 4);
    put32(at + 40, dataBytes);
    return out;
}

bool kReadWavHeader(const uint8_t* bytes, size_t size, KWavInfo& info)
{
    info = KWavInfo();
    if (!bytes || size < 12 || std::memcmp(bytes, "RIFF", 4) != 0 || std::memcmp(bytes + 8, "WAVE", 4) != 0)
        return false;
    bool haveFormat = false;
    size_t at = 12;
    while (size >= 8 && at <= size - 8) {
        uint32_t length = get32(bytes + at + 4);
        size_t body = at + 8;
        size_t available = size - body;
        if (std::memcmp(bytes + at, "fmt ", 4) == 0) {
            if (length < 16 || available < 16)
                return false;
            info.formatTag = int16_t(get16(bytes + body));
            info.format.channels = int16_t(get16(bytes + body + 2));
            info.format.sampleRate = int32_t(get32(bytes + body + 4));
            info.format.bitsPerSample = int16_t(get16(bytes + body + 14));
            // Rates and channel counts beyond any sound card's are damage,
            // and would overflow the byte rate.
            haveFormat = info.formatTag == 1 && info.format.channels > 0
                         && info.format.channels <= KWavFormat::kMaximumChannels && info.format.sampleRate > 0
                         && info.format.sampleRate <= KWavFormat::kMaximumSampleRate
                         && (info.format.bitsPerSample == 8 || info.format.bitsPerSample == 16);
            if (!haveFormat)
                return false;
        } else if (std::memcmp(bytes + at, "data", 4) == 0) {
            if (!haveFormat)
                return false;
            info.dataOffset = uint32_t(body);
            info.dataBytes = length == 0 || length > available ? uint32_t(available) : length;
            return true;
        }
        // Chunks are padded to an even length.
        uint64_t next = uint64_t(body) + length + (length & 1);
        if (next > size)
            return false;
        at = size_t(next);
    }
    return false;
}
