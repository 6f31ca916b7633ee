#pragma once

#include "kernel/KThing.h"
#include "kernel/KThingPtr.h"
#include "kmultimedia/KWavWriter.h"
#include "windowing/KWindowingForward.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

class KFileReference;
class KSoundCaptureNative;

// Records the sound input into a WAV file (16-bit mono, 22050 Hz). While it
// records, a 33 ms timer drains what was captured into the file; capture
// queues on its own threads, so a stalled loop loses nothing. Without a
// microphone nothing starts and no file is made; a device lost or a full
// disk stops the take and keeps what was written.
class KSoundRecorder : public KThing {
    K_DECLARE_CLASS(KSoundRecorder)
public:
    enum Failure : int32_t {
        NoFailure = 0,
        NoDevice = 1,
        DiskFull = 2,
        CannotWrite = 3,
        DeviceLost = 4,
    };
    static constexpr int32_t kDrainInterval = 33;
    using CaptureFactory = std::function<KSoundCaptureNative*()>;

    KSoundRecorder();
    KSoundRecorder(const KSoundRecorder&) = delete;
    KSoundRecorder& operator=(const KSoundRecorder&) = delete;
    ~KSoundRecorder() override;

    // Does nothing while recording. False when the take could not start.
    bool startRecording(const KFileReference& file);
    bool startRecording(const std::string& path);
    void stopRecording();
    bool isRecording() const { return recording; }

    // Moves what was captured into the file; the timer calls it.
    void drain();
    void timerFired(KTimer& timer) override;

    // The input level of the last drain, 0 to 100, and whether it clipped.
    float getLevel() const { return level; }
    bool isClipping() const { return clipping; }
    double getSeconds() const { return writer.getSeconds(); }
    uint32_t getBytes() const { return writer.getDataBytes(); }
    Failure getFailure() const { return failure; }
    // The English key of the message for the failure; null for none.
    const char* getFailureText() const;
    const std::string& getPath() const { return path; }

    // Where capture comes from; tests put a fake or a named source there.
    static void setCaptureFactory(CaptureFactory factory);

private:
    void finish(Failure reason);
    void measure(const std::vector<uint8_t>& bytes);

    bool recording = false;
    std::string path;
    std::unique_ptr<KSoundCaptureNative> capture;
    KWavWriter writer;
    KTimerPtr timer;
    std::vector<uint8_t> buffer;
    float level = 0.0f;
    bool clipping = false;
    Failure failure = NoFailure;
};
