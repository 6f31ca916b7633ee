#include "kmultimedia/testing/KFakeCapture.h"

#include "kmultimedia/KSoundRecorder.h"

bool KFakeCapture::start(const KWavFormat&)
{
    ++script->starts;
    seen = KCaptureFacts();
    seen.firstBufferInTime = !script->noDevice;
    seen.onlyMonitors = script->noDevice;
    script->running = !kCaptureHasNoDevice(seen);
    return script->running;
}

void KFakeCapture::drain(std::vector<uint8_t>& out)
{
    if (script->drains < script->chunks.size()) {
        const std::vector<uint8_t>& chunk = script->chunks[script->drains];
        out.insert(out.end(), chunk.begin(), chunk.end());
    } else if (script->bytesPerDrain > 0) {
        std::vector<uint8_t> steady = samples(script->bytesPerDrain / 2, script->sampleValue);
        out.insert(out.end(), steady.begin(), steady.end());
    }
    ++script->drains;
}

void KFakeCapture::install(std::shared_ptr<Script> script)
{
    if (!script) {
        KSoundRecorder::setCaptureFactory(nullptr);
        return;
    }
    KSoundRecorder::setCaptureFactory([script] { return new KFakeCapture(script); });
}

std::vector<uint8_t> KFakeCapture::samples(size_t count, int16_t value)
{
    std::vector<uint8_t> bytes;
    bytes.reserve(count * 2);
    for (size_t i = 0; i < count; ++i) {
        bytes.push_back(uint8_t(uint16_t(value) & 0xFF));
        bytes.push_back(uint8_t(uint16_t(value) >> 8));
    }
    return bytes;
}
