#pragma once

#include "kmultimedia/KSoundLevelReader.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

// A level reader without a decoder: it answers with the levels the test
// gave for a path, or with `otherwise` for any other path when that is set,
// and records the paths it was asked for.
class KFakeLevelReader final : public KSoundLevelReader {
public:
    struct Script {
        std::map<std::string, KSoundLevels> files;
        bool answerOtherwise = false;
        KSoundLevels otherwise;
        std::vector<std::string> reads;
    };

    explicit KFakeLevelReader(std::shared_ptr<Script> script)
        : script(std::move(script))
    {
    }

    bool read(const std::string& path, int32_t intervalMs, KSoundLevels& out) override;

    // Installs a factory of fakes sharing the script into the sound
    // highlight aligner; null puts the platform's reader back.
    static void install(std::shared_ptr<Script> script);
    // Levels of `intervalMs` stretches: `quiet` everywhere but in the
    // spans [from, to) milliseconds, which are `loud`.
    static KSoundLevels make(int32_t durationMs, const std::vector<std::pair<int32_t, int32_t>>& loudSpans,
                             int32_t intervalMs = 10, float loud = -12.0f, float quiet = -70.0f);

private:
    std::shared_ptr<Script> script;
};
