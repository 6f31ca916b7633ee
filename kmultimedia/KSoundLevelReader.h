#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The loudness of a sound file over time: the RMS level in decibels of each
// stretch of `intervalMs` milliseconds, from the start (the loudest channel
// counts; silence is kSilence), and the file's length.
struct KSoundLevels {
    static constexpr float kSilence = -100.0f;

    int32_t intervalMs = 10;
    std::vector<float> decibels;
    int32_t durationMs = 0;
};

// Reads the loudness of a sound file as fast as it decodes, without playing
// it. One file at a time; every call is made on the event thread and waits
// for the whole file.
class KSoundLevelReader {
public:
    KSoundLevelReader() = default;
    virtual ~KSoundLevelReader() = default;
    KSoundLevelReader(const KSoundLevelReader&) = delete;
    KSoundLevelReader& operator=(const KSoundLevelReader&) = delete;

    // False when the file cannot be decoded; `out` is then empty.
    virtual bool read(const std::string& path, int32_t intervalMs, KSoundLevels& out) = 0;
};

// The platform's reader; null where there is none.
KSoundLevelReader* knsCreateSoundLevelReader();
