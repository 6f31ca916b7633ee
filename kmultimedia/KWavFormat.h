#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

// The PCM format of a WAV file, and the canonical 44-byte header: "RIFF",
// the size, "WAVE", a 16-byte "fmt " chunk and the "data" chunk's head, all
// little-endian.
struct KWavFormat {
    int16_t channels = 1;
    int32_t sampleRate = 22050;
    int16_t bitsPerSample = 16;

    static constexpr size_t kHeaderSize = 44;
    static constexpr int16_t kMaximumChannels = 8;
    static constexpr int32_t kMaximumSampleRate = 384000;

    int16_t blockAlign() const { return int16_t(channels * (bitsPerSample / 8)); }
    int32_t bytesPerSecond() const { return sampleRate * blockAlign(); }

    // What recordings are made in: 16-bit mono at 22050 Hz, or 8-bit mono
    // at 11025 Hz on a device that cannot capture the first.
    static KWavFormat forRecording(bool deviceHas16BitMono22k = true);

    std::array<uint8_t, kHeaderSize> header(uint32_t dataBytes) const;
};

// What a WAV file's header says.
struct KWavInfo {
    KWavFormat format;
    int16_t formatTag = 0;
    uint32_t dataOffset = 0;
    uint32_t dataBytes = 0; // as stated, cut to what the file holds
};

// Reads the header of a WAV file from its first bytes, walking the chunks
// up to "data". A "data" size of 0 (a recording that never finished) or
// beyond the bytes given counts as everything to the end. False when it is
// no PCM WAV file.
bool kReadWavHeader(const uint8_t* bytes, size_t size, KWavInfo& info);
