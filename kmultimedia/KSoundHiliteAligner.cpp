#include "kmultimedia/KSoundHiliteAligner.h"

#include "kernel/KFileReference.h"
#include "kernel/KThingPtr.h"
#include "kernel/KVariable.h"
#include "kmultimedia/KExtendedSpeech.h"
#include "kmultimedia/KMediaFeedbackEvent.h"
#include "kmultimedia/KSoundHiliteEditing.h"
#include "kmultimedia/KSoundHiliteMarker.h"
#include "kmultimedia/KSoundHiliteMedia.h"
#include "kmultimedia/KSpeechSupport.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <map>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace {

KSoundHiliteAligner::LevelReaderFactory& levelReaderFactory()
{
    static KSoundHiliteAligner::LevelReaderFactory factory;
    return factory;
}

// The engine reads far faster than it speaks; a text it has not read in
// this time is not read at all.
constexpr auto kSynthesisLimit = std::chrono::seconds(30);

// Collects the words of a speech's feedback.
class WordCollector : public KThing {
public:
    KEventReturn handleEvent(KEvent& event) override
    {
        auto* feedback = dynamic_cast<KMediaFeedbackEvent*>(&event);
        if (!feedback)
            return 0;
        KVariable* start = feedback->getValue(KMediaFeedbackEvent::kWordStart);
        KVariable* heard = feedback->getValue(KMediaFeedbackEvent::kElapsedTime);
        if (start && heard && start->getLong() >= 0)
            words.push_back({ start->getLong(), heard->getLong() });
        return 1;
    }
    std::vector<KSoundHiliteAligner::SpokenWord> words;
};

// A file of its own in the temporary folder, removed when it goes.
class TemporaryWav {
public:
    TemporaryWav()
    {
        static std::atomic<int32_t> counter { 0 };
        std::error_code ignored;
        std::filesystem::path folder = std::filesystem::temp_directory_path(ignored);
        path = (folder / ("taleloom-reading-" + std::to_string(getpid()) + "-" + std::to_string(++counter) + ".wav"))
                   .string();
    }
    ~TemporaryWav()
    {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
    TemporaryWav(const TemporaryWav&) = delete;
    TemporaryWav& operator=(const TemporaryWav&) = delete;

    std::string path;
};

// Linear between two points; the first when they coincide.
double between(double x, double x0, double y0, double x1, double y1)
{
    return x1 == x0 ? y0 : y0 + (x - x0) * (y1 - y0) / (x1 - x0);
}

struct Snap {
    int32_t marker = 0;
    int32_t onset = 0; // index in the onsets
};

using Onset = KSoundHiliteAligner::Onset;

// How alike two pauses are, 0 to 1: a full stop read with a long pause
// pairs with a long pause of the recording rather than with a breath.
double pauseLikeness(int32_t a, int32_t b)
{
    constexpr int32_t kLongest = 1500;
    double x = std::clamp(a, 1, kLongest);
    double y = std::clamp(b, 1, kLongest);
    return std::min(x, y) / std::max(x, y);
}

// Pairs the given words with the given onsets, in order, so that the pairs
// score most together: each pair scores by its closeness in time and by
// the likeness of the pauses before the word in the reading and before the
// onset in the recording.
std::vector<Snap> pairInOrder(const std::vector<double>& estimated, const std::vector<int32_t>& readingPause,
                              const std::vector<Onset>& onsets, const std::vector<int32_t>& words,
                              const std::vector<int32_t>& candidates, int32_t window)
{
    size_t rows = words.size();
    size_t columns = candidates.size();
    if (rows == 0 || columns == 0)
        return {};
    auto score = [&](size_t a, size_t b) {
        const Onset& onset = onsets[size_t(candidates[b])];
        double distance = std::fabs(estimated[size_t(words[a])] - onset.time);
        if (distance >= window)
            return 0.0;
        double likeness = pauseLikeness(readingPause[size_t(words[a])], onset.quietBefore);
        return (1.0 - distance / window) * (0.25 + 0.75 * likeness);
    };
    std::vector<double> best((rows + 1) * (columns + 1), 0.0);
    auto at = [&](size_t a, size_t b) -> double& { return best[a * (columns + 1) + b]; };
    for (size_t a = 1; a <= rows; ++a) {
        for (size_t b = 1; b <= columns; ++b) {
            double paired = score(a - 1, b - 1);
            at(a, b) = std::max({ at(a - 1, b), at(a, b - 1), paired > 0.0 ? at(a - 1, b - 1) + paired : 0.0 });
        }
    }
    std::vector<Snap> pairs;
    for (size_t a = rows, b = columns; a > 0 && b > 0;) {
        double paired = score(a - 1, b - 1);
        if (paired > 0.0 && at(a, b) == at(a - 1, b - 1) + paired) {
            pairs.push_back({ words[a - 1], candidates[b - 1] });
            --a;
            --b;
        } else if (at(a, b) == at(a - 1, b)) {
            --a;
        } else {
            --b;
        }
    }
    std::reverse(pairs.begin(), pairs.end());
    return pairs;
}

// The first words of sentences with the onsets after the longest quiet
// stretches of the recording, in order: a reader pauses at a full stop
// longer than inside a sentence, however the pace drifts. The first word of
// the text goes with the first sound. A pair far from where the word was
// estimated is left out.
std::vector<Snap> pairSentences(const std::vector<double>& estimated, const std::vector<bool>& sentenceStarts,
                                const std::vector<Onset>& onsets, double farthest)
{
    std::vector<Snap> pairs;
    if (onsets.empty() || estimated.empty())
        return pairs;
    pairs.push_back({ 0, 0 });
    std::vector<int32_t> starts;
    for (size_t i = 1; i < sentenceStarts.size() && i < estimated.size(); ++i) {
        if (sentenceStarts[i])
            starts.push_back(int32_t(i));
    }
    std::vector<int32_t> longest;
    for (int32_t j = 1; j < int32_t(onsets.size()); ++j)
        longest.push_back(j);
    if (starts.empty() || longest.size() < starts.size())
        return pairs;
    std::stable_sort(longest.begin(), longest.end(), [&](int32_t a, int32_t b) {
        return onsets[size_t(a)].quietBefore > onsets[size_t(b)].quietBefore;
    });
    longest.resize(starts.size());
    std::sort(longest.begin(), longest.end());
    for (size_t k = 0; k < starts.size(); ++k) {
        const Onset& onset = onsets[size_t(longest[k])];
        if (std::fabs(estimated[size_t(starts[k])] - onset.time) <= farthest)
            pairs.push_back({ starts[k], longest[k] });
    }
    return pairs;
}

// Pairs the words that follow a pause in the reading with the onsets
// between each two fixed pairs.
std::vector<Snap> pairPauses(const std::vector<double>& estimated, const std::vector<int32_t>& readingPause,
                             const std::vector<Onset>& onsets, const std::vector<Snap>& fixed, int32_t window)
{
    std::vector<Snap> pairs;
    int32_t markerFrom = 0;
    int32_t onsetFrom = 0;
    auto between = [&](int32_t markerTo, int32_t onsetTo) {
        std::vector<int32_t> words;
        for (int32_t i = markerFrom; i < markerTo; ++i) {
            if (readingPause[size_t(i)] > 0)
                words.push_back(i);
        }
        std::vector<int32_t> candidates;
        for (int32_t j = onsetFrom; j < onsetTo; ++j)
            candidates.push_back(j);
        for (const Snap& pair : pairInOrder(estimated, readingPause, onsets, words, candidates, window))
            pairs.push_back(pair);
    };
    for (const Snap& anchor : fixed) {
        between(anchor.marker, anchor.onset);
        pairs.push_back(anchor);
        markerFrom = anchor.marker + 1;
        onsetFrom = anchor.onset + 1;
    }
    between(int32_t(estimated.size()), int32_t(onsets.size()));
    return pairs;
}

// Adds pairs of the other markers with the onsets left, the closest first,
// each within the window of its time, so that no pair crosses another.
void snapTheRest(const std::vector<double>& times, const std::vector<Onset>& onsets, int32_t window,
                 std::vector<Snap>& pairs)
{
    struct Candidate {
        double distance;
        int32_t marker;
        int32_t onset;
    };
    std::map<int32_t, int32_t> taken; // marker -> onset
    std::vector<bool> onsetUsed(onsets.size(), false);
    for (const Snap& pair : pairs) {
        taken[pair.marker] = pair.onset;
        onsetUsed[size_t(pair.onset)] = true;
    }
    std::vector<Candidate> candidates;
    for (int32_t j = 0; j < int32_t(onsets.size()); ++j) {
        if (onsetUsed[size_t(j)])
            continue;
        for (int32_t i = 0; i < int32_t(times.size()); ++i) {
            double distance = std::fabs(times[size_t(i)] - onsets[size_t(j)].time);
            if (distance <= window && !taken.count(i))
                candidates.push_back({ distance, i, j });
        }
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.distance < b.distance; });
    for (const Candidate& candidate : candidates) {
        if (taken.count(candidate.marker) || onsetUsed[size_t(candidate.onset)])
            continue;
        int32_t time = onsets[size_t(candidate.onset)].time;
        auto after = taken.upper_bound(candidate.marker);
        // Room for the markers in between, each 1 ms after the last.
        if (after != taken.end()
            && (after->second < candidate.onset
                || onsets[size_t(after->second)].time - time < after->first - candidate.marker))
            continue;
        if (after != taken.begin()) {
            auto before = std::prev(after);
            if (before->second > candidate.onset
                || time - onsets[size_t(before->second)].time < candidate.marker - before->first)
                continue;
        }
        taken[candidate.marker] = candidate.onset;
        onsetUsed[size_t(candidate.onset)] = true;
    }
    pairs.clear();
    for (const auto& [marker, onset] : taken)
        pairs.push_back({ marker, onset });
}

// A time of the reading and the time of the recording it stands for.
struct Point {
    double read = 0;
    double heard = 0;
};

// Adds the point when it keeps both times rising.
bool addRising(std::vector<Point>& points, const Point& point)
{
    auto after = std::upper_bound(points.begin(), points.end(), point.read,
                                  [](double read, const Point& p) { return read < p.read; });
    if (after != points.begin() && (std::prev(after)->read >= point.read || std::prev(after)->heard >= point.heard))
        return false;
    if (after != points.end() && after->heard <= point.heard)
        return false;
    points.insert(after, point);
    return true;
}

// What the reading's times stand for in the recording: each paired word at
// its onset; where both paused before it, the end of the sound before the
// pause too, so that the words before a pause are paced by the speech and
// not by the pause; and the first and last sound of each.
struct Pacing {
    std::vector<Point> points;
    double scale = 1.0;

    double heardAt(double read) const
    {
        if (points.empty())
            return read;
        if (read <= points.front().read)
            return points.front().heard - (points.front().read - read) * scale;
        if (read >= points.back().read)
            return points.back().heard + (read - points.back().read) * scale;
        auto after
            = std::upper_bound(points.begin(), points.end(), read, [](double r, const Point& p) { return r < p.read; });
        const Point& a = *std::prev(after);
        return between(read, a.read, a.heard, after->read, after->heard);
    }
};

Pacing pace(const std::vector<int32_t>& spoken, const std::vector<int32_t>& readingPause,
            const std::vector<Snap>& pairs, const std::vector<Onset>& onsets, const Point& first, const Point& last,
            double scale)
{
    Pacing pacing;
    pacing.scale = scale;
    for (const Snap& pair : pairs)
        addRising(pacing.points, { double(spoken[size_t(pair.marker)]), double(onsets[size_t(pair.onset)].time) });
    for (const Snap& pair : pairs) {
        const Onset& onset = onsets[size_t(pair.onset)];
        int32_t read = spoken[size_t(pair.marker)];
        int32_t readPause = readingPause[size_t(pair.marker)];
        if (readPause > 0 && readPause < read && onset.quietBefore < onset.time)
            addRising(pacing.points, { double(read - readPause), double(onset.time - onset.quietBefore) });
    }
    addRising(pacing.points, first);
    addRising(pacing.points, last);
    return pacing;
}

std::vector<double> placeAll(const std::vector<int32_t>& spoken, const Pacing& pacing)
{
    std::vector<double> times;
    for (int32_t read : spoken)
        times.push_back(pacing.heardAt(read));
    return times;
}

// How many stretches of each level held sound before each stretch.
std::vector<int32_t> soundSoFar(const KSoundLevels& levels, float quiet)
{
    std::vector<int32_t> sums(levels.decibels.size() + 1, 0);
    for (size_t i = 0; i < levels.decibels.size(); ++i)
        sums[i + 1] = sums[i] + (levels.decibels[i] >= quiet ? 1 : 0);
    return sums;
}

// Where each word of the reading falls in the recording when the two are
// matched by the sound they hold rather than by the clock: a reader's
// pauses differ from the engine's far more than the pace of the speech
// does, so the same share of speech is heard at about the same word. A word
// that begins after a pause lands at the sound after the recording's pause
// at that point. Empty without the levels of both.
std::vector<double> bySpeech(const std::vector<int32_t>& spoken, const KSoundLevels& reading,
                             const KSoundLevels& recording, const KSoundHiliteAligner::Settings& settings)
{
    if (reading.decibels.empty() || recording.decibels.empty() || reading.intervalMs <= 0 || recording.intervalMs <= 0)
        return {};
    std::vector<int32_t> read = soundSoFar(reading, KSoundHiliteAligner::quietLevel(reading, settings));
    std::vector<int32_t> heard = soundSoFar(recording, KSoundHiliteAligner::quietLevel(recording, settings));
    if (read.back() == 0 || heard.back() == 0)
        return {};
    double ratio = double(heard.back()) / double(read.back());
    std::vector<double> times;
    for (int32_t time : spoken) {
        size_t frame = std::clamp<size_t>(size_t(std::max(time, 0) / reading.intervalMs), 0, read.size() - 1);
        auto share = int32_t(std::lround(read[frame] * ratio));
        // The first stretch of the recording after `share` stretches of
        // sound, which is itself sound.
        auto at = std::upper_bound(heard.begin(), heard.end(), std::min(share, heard.back() - 1));
        times.push_back(double(at - heard.begin() - 1) * recording.intervalMs);
    }
    return times;
}

// Each marker at least 1 ms after the one before, all within the sound.
void keepOrder(std::vector<int32_t>& times, int32_t duration)
{
    int32_t last = std::max(duration - 1, 0);
    for (size_t i = 0; i < times.size(); ++i) {
        times[i] = std::clamp(times[i], 0, last);
        if (i > 0 && times[i] <= times[i - 1])
            times[i] = times[i - 1] + 1;
    }
    for (size_t i = times.size(); i-- > 0;) {
        if (times[i] > last)
            times[i] = last;
        if (i + 1 < times.size() && times[i] >= times[i + 1])
            times[i] = times[i + 1] - 1;
        times[i] = std::max(times[i], 0);
    }
}

} // namespace

void KSoundHiliteAligner::setLevelReaderFactory(LevelReaderFactory factory)
{
    levelReaderFactory() = std::move(factory);
}

std::unique_ptr<KSoundLevelReader> KSoundHiliteAligner::makeLevelReader()
{
    if (levelReaderFactory())
        return std::unique_ptr<KSoundLevelReader>(levelReaderFactory()());
    return std::unique_ptr<KSoundLevelReader>(knsCreateSoundLevelReader());
}

float KSoundHiliteAligner::quietLevel(const KSoundLevels& levels, const Settings& settings)
{
    if (levels.decibels.empty())
        return 0.0f;
    std::vector<float> sorted = levels.decibels;
    auto tenth = sorted.begin() + std::ptrdiff_t(sorted.size() / 10);
    std::nth_element(sorted.begin(), tenth, sorted.end());
    float floor = *tenth;
    float peak = *std::max_element(levels.decibels.begin(), levels.decibels.end());
    return std::max(floor + settings.marginDb, peak - settings.rangeDb);
}

std::vector<KSoundHiliteAligner::Onset> KSoundHiliteAligner::findOnsets(const KSoundLevels& levels,
                                                                        const Settings& settings)
{
    std::vector<Onset> onsets;
    if (levels.decibels.empty() || levels.intervalMs <= 0)
        return onsets;
    float quiet = quietLevel(levels, settings);
    int32_t needed = std::max(1, (settings.quietMs + levels.intervalMs - 1) / levels.intervalMs);
    // The start of the sound counts as a long quiet.
    int32_t quietRun = std::max(needed, 10000 / levels.intervalMs);
    for (size_t i = 0; i < levels.decibels.size(); ++i) {
        if (levels.decibels[i] < quiet) {
            ++quietRun;
            continue;
        }
        if (quietRun >= needed)
            onsets.push_back({ int32_t(i) * levels.intervalMs, quietRun * levels.intervalMs });
        quietRun = 0;
    }
    return onsets;
}

bool KSoundHiliteAligner::soundExtent(const KSoundLevels& levels, const Settings& settings, int32_t& first,
                                      int32_t& last)
{
    float quiet = quietLevel(levels, settings);
    auto loud = [quiet](float level) { return level >= quiet; };
    auto begin = std::find_if(levels.decibels.begin(), levels.decibels.end(), loud);
    if (begin == levels.decibels.end())
        return false;
    auto end = std::find_if(levels.decibels.rbegin(), levels.decibels.rend(), loud);
    first = int32_t(begin - levels.decibels.begin()) * levels.intervalMs;
    last = int32_t(levels.decibels.rend() - end) * levels.intervalMs;
    return true;
}

std::vector<int32_t> KSoundHiliteAligner::spokenTimes(const std::vector<KSoundHiliteMarkerPtr>& markers,
                                                      const std::vector<SpokenWord>& spoken)
{
    std::vector<int32_t> times(markers.size(), -1);
    std::vector<size_t> known;
    for (size_t i = 0; i < markers.size(); ++i) {
        int32_t start = markers[i]->getWordStart();
        int32_t end = start + std::max(markers[i]->getWordLength(), 1);
        for (const SpokenWord& word : spoken) {
            if (word.start >= start && word.start < end) {
                times[i] = word.audioMs;
                known.push_back(i);
                break;
            }
        }
    }
    if (known.empty())
        return {};
    // The engine's pace in milliseconds a character, for words beyond the
    // first and last reported ones.
    double pace = 60.0;
    if (known.size() > 1) {
        const KSoundHiliteMarker& a = *markers[known.front()];
        const KSoundHiliteMarker& b = *markers[known.back()];
        if (b.getWordStart() > a.getWordStart())
            pace = double(times[known.back()] - times[known.front()]) / double(b.getWordStart() - a.getWordStart());
    }
    size_t next = 0;
    for (size_t i = 0; i < markers.size(); ++i) {
        while (next < known.size() && known[next] < i)
            ++next;
        if (times[i] >= 0)
            continue;
        double at = markers[i]->getWordStart();
        double time = 0;
        if (next == 0) {
            const KSoundHiliteMarker& b = *markers[known.front()];
            time = times[known.front()] - (b.getWordStart() - at) * pace;
        } else if (next == known.size()) {
            const KSoundHiliteMarker& a = *markers[known.back()];
            time = times[known.back()] + (at - a.getWordStart()) * pace;
        } else {
            const KSoundHiliteMarker& a = *markers[known[next - 1]];
            const KSoundHiliteMarker& b = *markers[known[next]];
            time = between(at, a.getWordStart(), times[known[next - 1]], b.getWordStart(), times[known[next]]);
        }
        times[i] = std::max(0, int32_t(std::lround(time)));
    }
    return times;
}

std::vector<bool> KSoundHiliteAligner::sentenceStarts(const std::vector<KSoundHiliteMarkerPtr>& markers)
{
    std::vector<bool> starts(markers.size(), false);
    for (size_t i = 1; i < markers.size(); ++i) {
        const KString& before = markers[i - 1]->getText();
        int32_t end = before.getLength();
        // Closing quotes and brackets may follow the mark.
        while (end > 0 && std::strchr("\"')]", before[end - 1]))
            --end;
        starts[i] = end > 0 && std::strchr(".!?", before[end - 1]) != nullptr;
    }
    return starts;
}

std::vector<int32_t> KSoundHiliteAligner::align(const std::vector<int32_t>& spoken, const KSoundLevels& reading,
                                                const KSoundLevels& recording, int32_t duration,
                                                const Settings& settings, const std::vector<bool>& sentenceStarts)
{
    std::vector<int32_t> times;
    if (spoken.empty() || duration <= 0)
        return times;
    // The stretch of each that holds the words.
    int32_t readFirst = 0;
    int32_t readLast = 0;
    if (!soundExtent(reading, settings, readFirst, readLast)) {
        readFirst = spoken.front();
        readLast = spoken.back() + 400;
    }
    int32_t heardFirst = 0;
    int32_t heardLast = duration;
    if (!soundExtent(recording, settings, heardFirst, heardLast)) {
        heardFirst = 0;
        heardLast = duration;
    }
    double scale = readLast > readFirst ? double(heardLast - heardFirst) / double(readLast - readFirst) : 1.0;
    std::vector<double> scaled = bySpeech(spoken, reading, recording, settings);
    if (scaled.empty()) {
        for (int32_t time : spoken)
            scaled.push_back(heardFirst + (time - readFirst) * scale);
    }

    // The pause before each word in the reading; without the reading's
    // levels every word may follow one.
    std::vector<Onset> readOnsets = findOnsets(reading, settings);
    std::vector<int32_t> readingPause(spoken.size(), readOnsets.empty() ? 1 : 0);
    for (size_t i = 0; i < spoken.size(); ++i) {
        for (const Onset& onset : readOnsets) {
            if (std::abs(onset.time - spoken[i]) <= settings.matchMs)
                readingPause[i] = std::max(readingPause[i], onset.quietBefore);
        }
    }
    std::vector<Onset> onsets = findOnsets(recording, settings);
    Point first { double(readFirst), double(heardFirst) };
    Point last { double(readLast), double(heardLast) };
    // The sentences first, then the pauses within them, then the rest.
    std::vector<Snap> sentences
        = pairSentences(scaled, sentenceStarts, onsets, std::max(2.0 * settings.windowMs, duration * 0.15));
    std::vector<double> placed
        = sentences.empty() ? scaled
                            : placeAll(spoken, pace(spoken, readingPause, sentences, onsets, first, last, scale));
    std::vector<Snap> pairs = pairPauses(placed, readingPause, onsets, sentences, settings.windowMs);
    placed = placeAll(spoken, pace(spoken, readingPause, pairs, onsets, first, last, scale));
    snapTheRest(placed, onsets, settings.snapMs, pairs);
    placed = placeAll(spoken, pace(spoken, readingPause, pairs, onsets, first, last, scale));
    for (double time : placed)
        times.push_back(int32_t(std::lround(time)));
    keepOrder(times, duration);
    return times;
}

bool KSoundHiliteAligner::synthesise(const KString& text, const KString& voice, double speed,
                                     const std::string& wavPath, std::vector<SpokenWord>& words)
{
    words.clear();
    if (text.isEmpty() || !KSpeechSupport::hasEngine())
        return false;
    KPtr<WordCollector> collector(new WordCollector());
    KExtendedSpeechPtr speech(new KExtendedSpeech());
    speech->getEngine().setRenderFile(wavPath);
    speech->getMediaFlags().set(KAbstractMedia::WordFeedback);
    speech->addTarget(*collector);
    if (!voice.isEmpty())
        speech->setVoice(voice);
    speech->setSpeed(speed);
    speech->setText(text);
    speech->play();
    auto end = std::chrono::steady_clock::now() + kSynthesisLimit;
    bool finished = false;
    while (speech->isPlaying() && std::chrono::steady_clock::now() < end) {
        speech->updatePlayback();
        if (speech->isDonePlaying()) {
            finished = true;
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    speech->stop();
    speech->unload();
    speech->removeTarget(*collector);
    words = std::move(collector->words);
    return finished && !words.empty();
}

KSoundHiliteAligner::Result KSoundHiliteAligner::update(KSoundHiliteMedia& media, int32_t duration,
                                                        const KString& voice)
{
    return update(media, duration, voice, Settings());
}

KSoundHiliteAligner::Result KSoundHiliteAligner::update(KSoundHiliteMedia& media, int32_t duration,
                                                        const KString& voice, const Settings& settings)
{
    std::vector<KSoundHiliteMarkerPtr> markers = KSoundHiliteEditing::layOut(media.getText(), 1);
    if (markers.empty())
        return Result::NoWords;
    std::unique_ptr<KSoundLevelReader> reader = makeLevelReader();
    KSoundLevels heard;
    std::string soundPath = media.getSoundFile().getPath().getNativeText().c_str();
    if (!reader || soundPath.empty() || !reader->read(soundPath, settings.intervalMs, heard))
        return Result::NoSound;
    if (duration <= 0)
        duration = heard.durationMs;
    if (duration <= 0)
        return Result::NoSound;
    TemporaryWav rendered;
    Reading reading;
    if (!synthesise(media.getText(), voice, 0.5, rendered.path, reading.words))
        return Result::NoSpeech;
    std::vector<int32_t> spoken = spokenTimes(markers, reading.words);
    if (spoken.empty())
        return Result::NoSpeech;
    // Without the reading's own levels its extent comes from its words.
    if (!reader->read(rendered.path, settings.intervalMs, reading.levels))
        reading.levels = KSoundLevels();
    std::vector<int32_t> times = align(spoken, reading.levels, heard, duration, settings, sentenceStarts(markers));
    media.clearMarkers();
    for (size_t i = 0; i < markers.size(); ++i) {
        markers[i]->setElapsedTime(times[i]);
        media.addMarker(*markers[i]);
    }
    return Result::Aligned;
}
