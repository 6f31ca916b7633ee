#pragma once

#include "kmultimedia/KMediaSupport.h"

#include <functional>
#include <string>
#include <vector>

class KBag;
class KSoundNative;

// The support of sound: whether this platform can play sound files, the
// sound input devices, and the file types a sound may come from. A single
// object of the library; a new one replaces the earlier one as the current
// support.
class KSoundSupport : public KMediaSupport {
    K_DECLARE_CLASS(KSoundSupport)
public:
    enum Engine : int32_t {
        Player = 1,
    };
    // Makes a new unopened native player; tests put a fake in its place.
    using NativeFactory = std::function<KSoundNative*()>;

    KSoundSupport();
    ~KSoundSupport() override;

    static KSoundSupport* current();
    // The engines a sound may use now: those of the current support, or
    // those of the platform when no support was made.
    static int32_t availableEngines();

    bool open() override;
    void close() override;
    int32_t getEngineFlags() const { return engineFlags; }

    // Adds a KString with the name of each input device to the bag.
    void getInputDevices(KBag& names) const;

    // The extensions offered when a sound file is chosen, in order.
    static const std::vector<const char*>& getSoundExtensions();
    static bool isSoundExtension(const char* extension);
    // The extension of the files recordings are written as.
    static const char* getRecordingExtension() { return "WAV"; }

    // A new player from the installed factory, or from the platform.
    static KSoundNative* createNative();
    static void setNativeFactory(NativeFactory factory);

private:
    int32_t engineFlags = 0;
};
