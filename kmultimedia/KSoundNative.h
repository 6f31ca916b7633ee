#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The interface between KSound and a native sound player. The player
// decodes on its own threads; every call here is made on the event thread
// and returns at once, except open(), which waits for the player to be
// ready up to a time limit.
class KSoundNative {
public:
    KSoundNative() = default;
    virtual ~KSoundNative() = default;
    KSoundNative(const KSoundNative&) = delete;
    KSoundNative& operator=(const KSoundNative&) = delete;

    // Opens the file at the host path. With a render path the sound goes,
    // as fast as it decodes, into a 16-bit WAV file there instead of to the
    // speakers, through the same volume and balance. False when the file
    // cannot be played; failure() then says why in one line.
    virtual bool open(const char* path, const char* renderPath) = 0;
    virtual void start() = 0;
    virtual void pause() = 0;
    // A flushing seek to the time in seconds; clears the end.
    virtual void seek(double seconds) = 0;
    // Seconds; 0 when unknown.
    virtual double duration() const = 0;
    virtual double position() const = 0;
    // The position of what is being heard, in seconds; false while the
    // player cannot tell (not yet playing, or between seeks).
    virtual bool queryPosition(double& seconds) const = 0;
    // Linear: 0 is silence, 1 the file's own level.
    virtual void setVolume(double volume) = 0;
    // -1 only the left channel, 1 only the right.
    virtual void setBalance(double balance) = 0;
    // Reads the player's messages; called on every pass while playing.
    virtual void update() = 0;
    // The end was reached, or the player failed while playing.
    virtual bool isAtEnd() const = 0;
    virtual bool hasFailed() const = 0;
    virtual const std::string& failure() const = 0;
};

// The native side: whether this platform can play sound files at all (bit
// 1), and a new unopened player, null where there is none.
int32_t knsAvailableSoundEngines();
KSoundNative* knsCreateSound();
// The names of the sound input devices, in the order the system lists them.
std::vector<std::string> knsSoundInputDevices();
