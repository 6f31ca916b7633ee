#pragma once

#include "kmultimedia/KSoundCaptureNative.h"

#include <cstdint>
#include <memory>
#include <vector>

// A sound input without a device: each drain hands out what the test
// scripted, or a steady stream of samples at a fixed rate per drain. A
// start may fail as a machine without a microphone does.
class KFakeCapture final : public KSoundCaptureNative {
public:
    // What the tests set and read, shared with the capture the recorder
    // made.
    struct Script {
        bool noDevice = false;
        // Bytes each drain adds when no chunk is scripted for it.
        size_t bytesPerDrain = 0;
        int16_t sampleValue = 1000;
        std::vector<std::vector<uint8_t>> chunks;
        size_t failAfter = SIZE_MAX; // drains before the device goes
        size_t drains = 0;
        int32_t starts = 0;
        bool running = false;
    };

    explicit KFakeCapture(std::shared_ptr<Script> script)
        : script(std::move(script))
    {
    }

    bool start(const KWavFormat& format) override;
    void drain(std::vector<uint8_t>& out) override;
    bool hasFailed() const override { return script->drains >= script->failAfter; }
    void stop() override { script->running = false; }
    const KCaptureFacts& facts() const override { return seen; }

    // Makes the recorder capture through fakes sharing the script; an
    // empty script puts the platform's capture back.
    static void install(std::shared_ptr<Script> script);
    // `count` samples of one value, little-endian 16 bits.
    static std::vector<uint8_t> samples(size_t count, int16_t value);

private:
    std::shared_ptr<Script> script;
    KCaptureFacts seen;
};
