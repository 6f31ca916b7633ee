#include "kmultimedia/testing/KFakeLevelReader.h"

#include "kmultimedia/KSoundHiliteAligner.h"

bool KFakeLevelReader::read(const std::string& path, int32_t, KSoundLevels& out)
{
    script->reads.push_back(path);
    auto found = script->files.find(path);
    if (found != script->files.end()) {
        out = found->second;
        return true;
    }
    if (script->answerOtherwise) {
        out = script->otherwise;
        return true;
    }
    out = KSoundLevels();
    return false;
}

void KFakeLevelReader::install(std::shared_ptr<Script> script)
{
    if (!script) {
        KSoundHiliteAligner::setLevelReaderFactory(nullptr);
        return;
    }
    KSoundHiliteAligner::setLevelReaderFactory([script] { return new KFakeLevelReader(script); });
}

KSoundLevels KFakeLevelReader::make(int32_t durationMs, const std::vector<std::pair<int32_t, int32_t>>& loudSpans,
                                    int32_t intervalMs, float loud, float quiet)
{
    KSoundLevels levels;
    levels.intervalMs = intervalMs;
    levels.durationMs = durationMs;
    levels.decibels.assign(size_t(durationMs / intervalMs), quiet);
    for (const auto& [from, to] : loudSpans) {
        for (int32_t t = from; t < to && t / intervalMs < int32_t(levels.decibels.size()); t += intervalMs)
            levels.decibels[size_t(t / intervalMs)] = loud;
    }
    return levels;
}
