#include "tools/taleloom-tool/AudioTimeline.h"

#include <algorithm>
#include <limits>

namespace {

int64_t frameAt(int64_t ms) { return ms * AudioTimeline::kRate / 1000; }

} // namespace

AudioTimeline::AudioTimeline(std::vector<TraceAudioClip> heard)
    : clips(std::move(heard))
{
}

const KAudioBuffer* AudioTimeline::decoded(const std::string& path, std::vector<std::string>& failed)
{
    if (auto found = files.find(path); found != files.end())
        return &found->second;
    if (undecodable.count(path))
        return nullptr;
    KAudioBuffer sound;
    std::string reason;
    if (!knsDecodeAudioFile(path, kRate, kChannels, sound, reason)) {
        undecodable[path] = true;
        failed.push_back(path + ": " + reason);
        return nullptr;
    }
    return &files.emplace(path, std::move(sound)).first->second;
}

int32_t AudioTimeline::clipEnd(const TraceAudioClip& clip, const KAudioBuffer& sound) const
{
    int64_t fileEnd = clip.startMs + sound.durationMs() - clip.offsetMs;
    int64_t end = clip.endMs >= 0 ? std::min<int64_t>(clip.endMs, fileEnd) : fileEnd;
    return int32_t(std::max<int64_t>(clip.startMs, end));
}

bool AudioTimeline::isHeardIn(int32_t beginMs, int32_t endMs)
{
    std::vector<std::string> ignored;
    for (const TraceAudioClip& clip : clips) {
        if (clip.startMs >= endMs || (clip.endMs >= 0 && clip.endMs <= beginMs) || clip.volume <= 0.0)
            continue;
        const KAudioBuffer* sound = decoded(clip.path, ignored);
        if (sound && clipEnd(clip, *sound) > beginMs && clipEnd(clip, *sound) > clip.startMs)
            return true;
    }
    return false;
}

void AudioTimeline::addClip(const TraceAudioClip& clip, const KAudioBuffer& sound, int32_t beginMs,
                            std::vector<int32_t>& sum)
{
    double left = clip.volume * (clip.balance > 0.0 ? 1.0 - clip.balance : 1.0);
    double right = clip.volume * (clip.balance < 0.0 ? 1.0 + clip.balance : 1.0);
    int64_t total = int64_t(sum.size()) / kChannels;
    // Where the clip falls on the mix, and where in its file that is.
    int64_t to = frameAt(clip.startMs - int64_t(beginMs));
    int64_t from = frameAt(clip.offsetMs);
    int64_t count = frameAt(clipEnd(clip, sound) - int64_t(clip.startMs));
    if (to < 0) {
        from -= to;
        count += to;
        to = 0;
    }
    count = std::min({ count, total - to, sound.frames() - from });
    for (int64_t i = 0; i < count; ++i) {
        size_t source = size_t(from + i) * kChannels;
        size_t target = size_t(to + i) * kChannels;
        sum[target] += int32_t(sound.samples[source] * left);
        sum[target + 1] += int32_t(sound.samples[source + 1] * right);
    }
}

KAudioBuffer AudioTimeline::mix(int32_t beginMs, int32_t endMs, std::vector<std::string>& failed)
{
    KAudioBuffer out;
    out.rate = kRate;
    out.channels = kChannels;
    int64_t frames = frameAt(std::max(0, endMs - beginMs));
    std::vector<int32_t> sum(size_t(frames) * kChannels, 0);
    for (const TraceAudioClip& clip : clips) {
        if (clip.startMs >= endMs || (clip.endMs >= 0 && clip.endMs <= beginMs))
            continue;
        if (const KAudioBuffer* sound = decoded(clip.path, failed))
            addClip(clip, *sound, beginMs, sum);
    }
    out.samples.resize(sum.size());
    std::transform(sum.begin(), sum.end(), out.samples.begin(), [](int32_t value) {
        return int16_t(
            std::clamp<int32_t>(value, std::numeric_limits<int16_t>::min(), std::numeric_limits<int16_t>::max()));
    });
    return out;
}
