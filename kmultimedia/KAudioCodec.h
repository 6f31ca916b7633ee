#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Sound as plain samples: 16-bit, channels interleaved.
struct KAudioBuffer {
    int32_t rate = 44100;
    int32_t channels = 2;
    std::vector<int16_t> samples;

    int64_t frames() const { return channels > 0 ? int64_t(samples.size()) / channels : 0; }
    int64_t durationMs() const { return rate > 0 ? frames() * 1000 / rate : 0; }
};

// Decodes a sound file of any format the platform reads into samples at
// the rate and channel count asked for, as fast as the computer goes.
// False with a one-line reason when the file cannot be decoded.
bool knsDecodeAudioFile(const std::string& path, int32_t rate, int32_t channels, KAudioBuffer& out,
                        std::string& reason);

// Encodes the samples as an MP3 file at the path (constant bit rate, so
// that every reader finds the same times in it). False with a one-line
// reason when the encoder is missing or the file cannot be written.
bool knsEncodeMp3File(const KAudioBuffer& in, const std::string& path, std::string& reason);
