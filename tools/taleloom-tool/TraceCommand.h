#pragma once

#include "tools/taleloom-tool/ToolCommand.h"

#include <cstdint>
#include <string>
#include <vector>

// taleloom-tool trace STORY.TPD -o TRACE.json [--input click@MS] [--input key:K@MS] [--limit MS]
//
// Plays the story without a display and without sound, on a clock that
// moves by the tape's tick, so that a run is fast and the same every time,
// and writes when each element started and ended, each word that a text
// lit and each time a text took its mark away, in milliseconds of the
// story. Story time 0 is the first tick of the tape. Sounds take their
// length and speeches the length of what the voice makes of them; movies
// play in real time. Input given with --input is delivered at the first
// tick at or after its time, before the tape's step:
// "click" presses and releases the mouse button, "key:K" presses the key K
// (a character, or "escape", "return", "space", "tab"). A story that loops
// is traced once through. --limit ends the trace (default 600000).
ToolCommand traceCommand();

struct TraceInput {
    enum class Kind { Click, Key };
    Kind kind = Kind::Click;
    int32_t keyCode = 0;
    int32_t timeMs = 0;
    // Where the input was delivered, -1 when the play ended first.
    int32_t deliveredMs = -1;
};

// "click@1500" or "key:a@200"; false when it is neither.
bool parseTraceInput(const std::string& text, TraceInput& input);

struct TraceElement {
    int32_t index = 0;
    int32_t type = 0;
    int32_t startMs = -1;
    // -1 while it still held the tape when the trace ended.
    int32_t endMs = -1;
};

struct TraceWord {
    int32_t element = -1;
    int32_t wordStart = 0;
    int32_t wordLength = 0;
    int32_t timeMs = 0;
};

// A text took its mark away: its reading ended or its medium said so.
struct TraceClear {
    int32_t element = -1;
    int32_t timeMs = 0;
};

struct TraceResult {
    std::vector<TraceElement> elements;
    std::vector<TraceWord> words;
    std::vector<TraceClear> cleared;
    std::vector<TraceInput> inputs;
    int32_t tickMs = 0;
    // The story time of the last tick.
    int32_t endMs = 0;
    // The play reached its end (or its loop) rather than the limit.
    bool finished = false;
};

constexpr int32_t kDefaultTraceLimitMs = 600000;

class SceneTapePage;
class Tape;

// Told of every tick of a traced play, after the tape's step: an export
// takes its pictures there.
class TraceObserver {
public:
    virtual ~TraceObserver() = default;
    // False ends the play.
    virtual bool ticked(Tape& tape, SceneTapePage& page, int32_t nowMs) = 0;
};

struct TraceOptions {
    std::vector<TraceInput> inputs;
    int32_t limitMs = kDefaultTraceLimitMs;
    // A wait for the user is answered with a click this long after it
    // began listening; -1 leaves it to the inputs.
    int32_t answerWaitsAfterMs = -1;
    TraceObserver* observer = nullptr;
    // Nobody looks at the page: the play need not draw it.
    bool withoutPictures = false;
    // Where what was heard is logged, or null.
    class TraceAudioLog* audioLog = nullptr;
};

bool traceStory(const std::string& path, const TraceOptions& options, TraceResult& result, std::string& reason,
                std::vector<std::string>& warnings);

// Traces the story in `path`. False with a one-line `reason` when it cannot
// be read.
bool traceStory(const std::string& path, const std::vector<TraceInput>& inputs, int32_t limitMs, TraceResult& result,
                std::string& reason, std::vector<std::string>& warnings);

// The trace as JSON.
std::string traceJson(const TraceResult& result);
