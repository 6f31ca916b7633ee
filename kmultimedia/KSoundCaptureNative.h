#pragma once

#include "kmultimedia/KWavFormat.h"

#include <cstdint>
#include <string>
#include <vector>

// What the native side learnt about the input while starting a capture.
// Automatic sources on machines without a microphone may pick a stand-in
// that starts and then gives nothing, or a tone, so several signs count.
struct KCaptureFacts {
    bool simulated = false; // the settings asked for a test tone
    bool onlyMonitors = false; // the system lists no input but monitors
    bool standInSource = false; // the chosen source is a test or fake one
    bool firstBufferInTime = false; // within a second of the start
    bool busError = false;
};

// True when the facts mean there is no microphone to record from.
bool kCaptureHasNoDevice(const KCaptureFacts& facts);

// The interface between KSoundRecorder and a native capture. Capture runs
// on its own threads and queues what it gets until drain() takes it, so a
// stalled event thread loses nothing.
class KSoundCaptureNative {
public:
    KSoundCaptureNative() = default;
    virtual ~KSoundCaptureNative() = default;
    KSoundCaptureNative(const KSoundCaptureNative&) = delete;
    KSoundCaptureNative& operator=(const KSoundCaptureNative&) = delete;

    // Starts capturing in the format and waits up to a second for the
    // first sound. False when it failed to start; facts() says what was
    // seen either way.
    virtual bool start(const KWavFormat& format) = 0;
    // Appends what was captured since the last call.
    virtual void drain(std::vector<uint8_t>& out) = 0;
    // The device went away or failed while capturing.
    virtual bool hasFailed() const = 0;
    virtual void stop() = 0;
    virtual const KCaptureFacts& facts() const = 0;
};

// A new capture from the input the settings choose: with TALELOOM_AUDIO=null
// a test tone, otherwise the system's automatic source. A source given as a
// GStreamer-style description ("audiotestsrc") takes its place, and is
// judged like a device.
KSoundCaptureNative* knsCreateSoundCapture(const std::string& sourceDescription = std::string());
