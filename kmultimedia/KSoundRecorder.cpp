#include "kmultimedia/KSoundRecorder.h"

#include "kernel/KClass.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "kernel/KTextCodec.h"
#include "kmultimedia/KLevelMeterState.h"
#include "kmultimedia/KMediaManager.h"
#include "kmultimedia/KSoundCaptureNative.h"
#include "windowing/KTimer.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

K_DEFINE_CLASS(KSoundRecorder, KThing)

namespace {

KSoundRecorder::CaptureFactory& captureFactory()
{
    static KSoundRecorder::CaptureFactory factory;
    return factory;
}

} // namespace

void KSoundRecorder::setCaptureFactory(CaptureFactory factory) { captureFactory() = std::move(factory); }

KSoundRecorder::KSoundRecorder()
    : timer(new KTimer())
{
    timer->setRepeat(true);
    timer->setMode(KTimer::Relative);
    timer->setTarget(this);
}

KSoundRecorder::~KSoundRecorder()
{
    stopRecording();
    timer->setTarget(nullptr);
}

bool KSoundRecorder::startRecording(const KFileReference& file)
{
    return startRecording(KTextCodec::toUtf8(file.getPath().getNativeText()));
}

bool KSoundRecorder::startRecording(const std::string& target)
{
    if (recording)
        return true;
    failure = NoFailure;
    level = 0.0f;
    clipping = false;
    // What plays would be heard in the take.
    if (KMediaManager* manager = KMediaManager::current())
        manager->stopAllMedia();
    KWavFormat format = KWavFormat::forRecording();
    capture.reset(captureFactory() ? captureFactory()() : knsCreateSoundCapture());
    if (!capture || !capture->start(format)) {
        capture.reset();
        failure = NoDevice;
        return false;
    }
    KWavWriter::Result opened = writer.open(target, format);
    if (opened != KWavWriter::Written) {
        capture->stop();
        capture.reset();
        std::remove(target.c_str());
        failure = opened == KWavWriter::DiskFull ? DiskFull : CannotWrite;
        return false;
    }
    path = target;
    recording = true;
    drain();
    if (recording) {
        timer->setInterval(kDrainInterval);
        timer->start();
    }
    return recording;
}

void KSoundRecorder::measure(const std::vector<uint8_t>& bytes)
{
    int32_t peak = 0;
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        int32_t sample = int16_t(uint16_t(bytes[i] | bytes[i + 1] << 8));
        peak = std::max(peak, sample < 0 ? -sample : sample);
    }
    double fraction = double(peak) / 32768.0;
    level = KLevelMeterState::levelFromPeak(fraction);
    clipping = KLevelMeterState::isClipping(fraction);
}

void KSoundRecorder::drain()
{
    if (!recording || !capture)
        return;
    buffer.clear();
    capture->drain(buffer);
    if (!buffer.empty())
        measure(buffer);
    KWavWriter::Result written = writer.write(buffer.data(), buffer.size());
    if (written != KWavWriter::Written)
        finish(written == KWavWriter::DiskFull ? DiskFull : CannotWrite);
    else if (capture->hasFailed())
        finish(DeviceLost);
}

void KSoundRecorder::timerFired(KTimer&) { drain(); }

void KSoundRecorder::stopRecording()
{
    if (!recording)
        return;
    // What came in after the last tick belongs to the take.
    drain();
    finish(failure);
}

void KSoundRecorder::finish(Failure reason)
{
    if (!recording)
        return;
    recording = false;
    failure = reason;
    timer->stop();
    if (capture) {
        capture->stop();
        capture.reset();
    }
    KWavWriter::Result closed = writer.close();
    if (failure == NoFailure && closed != KWavWriter::Written)
        failure = closed == KWavWriter::DiskFull ? DiskFull : CannotWrite;
    level = 0.0f;
    if (KMediaManager* manager = KMediaManager::current())
        manager->recheckIdle();
}

const char* KSoundRecorder::getFailureText() const
{
    switch (failure) {
    case NoDevice:
        return "No microphone was found.";
    case DiskFull:
        return "Disk Full!";
    case CannotWrite:
        return "Disk Full!";
    default:
        return nullptr;
    }
}
