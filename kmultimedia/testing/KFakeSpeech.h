#pragma once

#include "kmultimedia/KSpeechNative.h"

#include <memory>
#include <string>
#include <vector>

// A speech engine without sound for tests: a fixed list of voices, and
// speeches that report the scripted words and play by a position the test
// moves.
class KFakeSpeechEngine final : public KSpeechEngine {
public:
    struct Script {
        std::vector<KSpeechRawWord> words; // reported when speaking starts
        int32_t positionMs = 0;
        bool done = false;
        // Each speech is done as soon as it starts, as a rendering into a
        // file is to the one who waits for it.
        bool speaksAtOnce = false;
        bool paused = false;
        double volume = 1.0;
        std::vector<KSpeechRequest> requests;
        int32_t cancels = 0;
    };

    KFakeSpeechEngine();

    const std::vector<KSpeechVoiceInfo>& voices() override { return voiceList; }
    KSpeechNative* createSpeech() override;
    void shutdown() override { ++shutdowns; }

    std::vector<KSpeechVoiceInfo> voiceList;
    std::shared_ptr<Script> script = std::make_shared<Script>();
    int32_t shutdowns = 0;
};
