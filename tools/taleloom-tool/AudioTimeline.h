#pragma once

#include "kmultimedia/KAudioCodec.h"
#include "tools/taleloom-tool/TraceMedia.h"

#include <map>
#include <string>
#include <vector>

// The sound of a traced play on one timeline: every clip heard, each file
// decoded once, mixed at its place with its volume and balance.
class AudioTimeline {
public:
    static constexpr int32_t kRate = 44100;
    static constexpr int32_t kChannels = 2;

    explicit AudioTimeline(std::vector<TraceAudioClip> clips);

    // The clips as a play still going on has logged them so far.
    void setClips(const std::vector<TraceAudioClip>& heard) { clips = heard; }

    // Whether something is heard between the two story times.
    bool isHeardIn(int32_t beginMs, int32_t endMs);
    // The sound from `beginMs` to `endMs` of story time. Files that cannot
    // be decoded are left out and named in `failed`, each once.
    KAudioBuffer mix(int32_t beginMs, int32_t endMs, std::vector<std::string>& failed);

private:
    // The decoded file, or null when it cannot be decoded.
    const KAudioBuffer* decoded(const std::string& path, std::vector<std::string>& failed);
    // The story time where the clip falls silent: its end, or its file's.
    int32_t clipEnd(const TraceAudioClip& clip, const KAudioBuffer& sound) const;
    void addClip(const TraceAudioClip& clip, const KAudioBuffer& sound, int32_t beginMs, std::vector<int32_t>& sum);

    std::vector<TraceAudioClip> clips;
    std::map<std::string, KAudioBuffer> files;
    std::map<std::string, bool> undecodable;
};
