#pragma once

#include "kernel/KString.h"
#include <string>

// The program run as the player of a published story: it opens the story
// beside itself, plays it from the start without menus or tools, keeps the
// last page until a key or a click, and quits on Escape or Control+".". It
// changes nothing on the disk: no settings, no recent files, no recovery
// copy, no thumbnails.
struct PlayerMode {
    bool on = false;
    bool windowed = false;
    bool quitAtEnd = false;
    KString document;
    // From the publication's player.ini; empty keeps the program's default.
    KString language;
    KString voice;
    bool hasSpeechSpeed = false;
    double speechSpeed = 0.0;
    // -1 unset, else 0 or 1.
    int32_t customSpeechSpeed = -1;

    static PlayerMode& get();
    static bool isOn() { return get().on; }
};

// Reads the settings a publication leaves beside its player: a key file
// with a group "Player" and the keys "Language", "SpeechSpeed",
// "CustomSpeechSpeed" and "LastUsedVoice". Unknown keys and groups, and
// malformed lines, are passed over.
void readPlayerSettings(const std::string& text, PlayerMode& mode);
