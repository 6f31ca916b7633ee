#pragma once

#include "kernel/KFileReference.h"
#include "kmultimedia/KAbstractMedia.h"

#include <string>

class KSoundNative;

// A sound file or a sound compiled into the program, played by the
// platform's player. Volume is linear (0 is silence), the balance moves the
// sound between the two channels. A sound that cannot be opened stays
// unloaded: play does nothing and the sound counts as done.
class KSound : public KAbstractMedia {
    K_DECLARE_CLASS(KSound)
public:
    KSound();
    KSound(const KSound&) = delete;
    // Takes the other sound's source and settings; the target must not be
    // loaded (kernel error 4).
    KSound& operator=(const KSound& other);
    ~KSound() override;

    bool createFromFile(const KDiskObjectReference& file) override;
    bool createFromResource(int16_t resourceID) override;
    const KFileReference& getFile() const { return file; }
    int32_t getResourceId() const { return resourceId; }

    bool load() override;
    void unload() override;
    void play() override;
    void stop() override;
    void pause() override;
    void resume() override;
    // Back to the start, still playing: the loop of a looping sound.
    void restart() override;
    bool isDonePlaying() override;
    void updatePlayback() override;
    double getDuration() override;
    void setVolume(double value) override;
    void setBalance(double value) override;
    // A fraction of the duration.
    void setPosition(double fraction) override;

    // Seconds played, 0 when not loaded.
    double getElapsed() const;
    // The position of what is being heard, in seconds; false when the sound
    // is not loaded or its player cannot tell yet.
    bool getPosition(double& seconds) const;
    // With a path, the next load sends the sound into a WAV file there, as
    // fast as it decodes, instead of to the speakers.
    void setRenderFile(const std::string& path) { renderPath = path; }

    // The attenuation of the decibel path that sounds in memory take, in
    // hundredths of a decibel: 0.0 is -40 dB, not silence.
    static int32_t volumeToHundredthsOfDecibel(double volume);

private:
    KSoundNative* native() const { return static_cast<KSoundNative*>(getNativeData()); }
    bool openNative(const std::string& path);
    bool extractResource(std::string& path);
    void disposeNative();
    void reportFailure(const std::string& why) const;

    int32_t resourceId = -1;
    KFileReference file;
    std::string renderPath;
    std::string resourceCopy;
    bool failureReported = false;
};
