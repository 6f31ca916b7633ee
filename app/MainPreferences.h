#pragma once

#include "app/StylusModes.h"
#include "kernel/KString.h"

#include <cstdint>

class KPreferences;

// The program's settings, kept in the preference group "MainPreferences".
// The keys are read in a fixed order; "AllowDuplicatedActors" and
// "LimitActorSize" are read but never written back, so that only a person
// editing the file (or the advanced settings) changes them.
struct MainPreferences {
    static constexpr const char* kGroup = "MainPreferences";
    static constexpr int16_t kDefaultPageWidth = 800;
    static constexpr int16_t kDefaultPageHeight = 600;
    // "SpeechSpeed" for the voice's own speed; 65535 is taken the same way.
    static constexpr double kVoiceOwnSpeed = -1.0;
    static constexpr int32_t kDefaultScanInterval = 1500;

    bool childMode = false;
    KString defaultColorPalette;
    KString lastUsedVoice;
    KString applicationLanguage = "English_TL";
    // The folder as stored; empty for the default.
    KString docFolder;
    double speechSpeed = kVoiceOwnSpeed;
    bool allowDuplicatedActors = false;
    bool customSpeechSpeed = false;
    ScreenMode editingWindowMode = ScreenMode::Window;
    bool limitActorSize = true;
    bool autoEdit = false;
    bool highlightElements = true;
    int16_t newDocW = kDefaultPageWidth;
    int16_t newDocH = kDefaultPageHeight;
    // The tool palette as the child needs it: 1, 1.5 or 2 times its size,
    // and the switch scanning with its interval in milliseconds.
    double paletteScale = 1.0;
    bool scanPalette = false;
    int32_t scanInterval = kDefaultScanInterval;

    // Takes the values found in `stored`, in the keys' order; a missing key
    // keeps its default, a stored value out of range gives the default.
    void readFrom(const KPreferences& stored);
    // Every written key; the two read-only ones stay out.
    void writeTo(KPreferences& stored) const;

    // The language names the localizer knows, from what a person may have
    // typed: "French" and "Français" give "Français", and so on; anything
    // unknown is "English_TL".
    static KString normaliseLanguage(const KString& name);
    // A stored page side: missing, zero, negative or beyond 16 bits give
    // the default.
    static int16_t pageSide(int32_t stored, int16_t fallback);
};

// Reading and writing the group in the user's store, with what can go
// wrong there: a group never written is written at once with the defaults;
// a file that cannot be read is kept beside as "MainPreferences.conf.bad"
// and replaced by the defaults; a store that cannot be written is told once
// on stderr and the program goes on with what it has.
class MainPreferencesStore {
public:
    // False when the defaults had to stand in.
    bool load(MainPreferences& values);
    bool save(const MainPreferences& values);
    bool wasSetAside() const { return setAside; }

private:
    bool setAside = false;
    bool reportedUnwritable = false;
};
