#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// Writes a video file from pictures and sound handed over in order, as fast
// as the computer encodes them: H.264 with AAC in MP4, or VP9 with Opus in
// WebM. Pictures are 32-bit pixels, 0x00RRGGBB, rows `stride` pixels apart;
// sound is 16-bit stereo at kAudioRate, channels interleaved.
class KVideoEncoder {
public:
    enum class Container { Mp4, WebM };
    struct Settings {
        Container container = Container::Mp4;
        int32_t width = 640;
        int32_t height = 480;
        int32_t framesPerSecond = 25;
    };
    static constexpr int32_t kAudioRate = 44100;
    static constexpr int32_t kAudioChannels = 2;

    virtual ~KVideoEncoder() = default;

    // Starts writing at the path; false with a one-line reason when the
    // encoders are missing or the file cannot be made.
    virtual bool open(const std::string& path, const Settings& settings, std::string& reason) = 0;
    // The next picture, shown from frame `index` / framesPerSecond seconds.
    virtual bool addFrame(const uint32_t* pixels, int32_t stride, int64_t index) = 0;
    // The next stretch of sound, `frames` samples for each channel.
    virtual bool addSound(const int16_t* samples, int64_t frames) = 0;
    // Ends the streams and waits for the file to be complete.
    virtual bool finish(std::string& reason) = 0;
};

std::unique_ptr<KVideoEncoder> knsCreateVideoEncoder();

// What a video file holds, read back: its length and the picture shown at
// a time, as 0x00RRGGBB pixels `width` a row. For checking exports.
struct KVideoFrame {
    int32_t width = 0;
    int32_t height = 0;
    int64_t durationMs = 0;
    std::vector<uint32_t> pixels;
};
bool knsReadVideoFrame(const std::string& path, int64_t timeMs, KVideoFrame& frame, std::string& reason);
