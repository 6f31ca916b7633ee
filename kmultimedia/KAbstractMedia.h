#pragma once

#include "kernel/KFlagSet.h"
#include "kernel/KThing.h"
#include "kmultimedia/KMultimediaForward.h"

#include "kernel/KSourceLocation.h"
#include <vector>

enum KMediaStreamingMode : int32_t {
    KMediaStreamFromFile = 0,
    KMediaInMemory = 1,
};

// The base of every timed medium: a small state machine (not loaded,
// loaded, playing, paused), the play controls and the receivers of its
// progress events. While it is loaded it stands in the media manager's list,
// and while it plays the manager drives it from the event loop's idle passes.
//
// Each subclass does the platform's work in the same state test as the base
// operation and then calls the base, so that a call in the wrong state does
// nothing.
class KAbstractMedia : public KThing {
    K_DECLARE_CLASS(KAbstractMedia)
public:
    enum class Status : int32_t {
        NotLoaded = 0,
        Loaded = 1,
        Playing = 2,
        Paused = 3,
    };
    using enum Status;
    enum Flag : int32_t {
        Looping = 1,
        WordFeedback = 4,
    };

    KAbstractMedia();
    // Media are not copied: the copy constructor says so and leaves a fresh,
    // unloaded medium.
    KAbstractMedia(const KAbstractMedia& other);
    // Takes the settings; the copy is not loaded.
    KAbstractMedia& operator=(const KAbstractMedia& other);
    ~KAbstractMedia() override;

    virtual double getDuration();
    virtual void setVolume(double value);
    virtual void setBalance(double value);
    virtual void setSpeed(double value);
    virtual double getSpeed();
    virtual void setPosition(double value);
    virtual void rewind();
    virtual void toEnd();
    virtual void clear();
    virtual bool createFromResource(int16_t resourceID);
    virtual bool createFromFile(const KDiskObjectReference& file);
    virtual bool load();
    virtual void unload();
    virtual void play();
    virtual void restart();
    virtual void stop();
    virtual void pause();
    virtual void resume();
    virtual bool isPlaying();
    virtual bool isPaused();
    virtual bool isDonePlaying();
    virtual void updatePlayback();

    // Only before loading; otherwise kernel error 4 and the mode stays.
    void setStreamingMode(KMediaStreamingMode mode);
    KMediaStreamingMode getStreamingMode() const { return KMediaStreamingMode(streamingMode); }

    Status getStatus() const { return status; }
    bool isLoaded() const { return status != NotLoaded; }
    KFlagSet& getMediaFlags() { return mediaFlags; }
    const KFlagSet& getMediaFlags() const { return mediaFlags; }
    bool isLooping() const { return mediaFlags.test(Looping); }
    void setLooping(bool on);

    double getVolume() const { return volume; }
    double getBalance() const { return balance; }
    double getStoredSpeed() const { return speed; }
    double getStoredPosition() const { return position; }

    // Receivers of the medium's feedback events, in order. They are not
    // held: a receiver removes itself before it goes.
    bool addTarget(KThing& target);
    bool removeTarget(KThing& target);
    int32_t targetCount() const { return int32_t(targets.size()); }
    void clearTargets() { targets.clear(); }
    // Gives a heap event the medium's receivers and itself as the source,
    // and delivers it now; a fresh event dies here.
    KEventReturn sendFeedback(KMediaFeedbackEvent* event);

protected:
    void* getNativeData() const { return nativeData; }
    void setNativeData(void* data) { nativeData = data; }
    // Kernel fields for subclasses that manage the status themselves.
    void setStatus(Status value) { status = value; }

    // A notice captioned with the caller.
    static void mustBeOverloaded(const KSourceLocation& where = KSourceLocation::current());

private:
    void enterManager();
    void leaveManager();
    void recheckManager();

    void* nativeData = nullptr;
    Status status = NotLoaded;
    int32_t streamingMode = KMediaStreamFromFile;
    KFlagSet mediaFlags;
    std::vector<KThing*> targets;
    double volume = 1.0;
    double balance = 0.0;
    double speed = 0.5;
    double position = 0.0;
};
