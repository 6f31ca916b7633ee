#include "tools/taleloom-tool/TraceCommand.h"

#include "app/SceneTapePage.h"
#include "app/actors/ActorLoading.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KTextCodec.h"
#include "kmultimedia/KMediaManager.h"
#include "kmultimedia/KMovieSupport.h"
#include "kmultimedia/KMultimediaClasses.h"
#include "kmultimedia/KSoundSupport.h"
#include "kmultimedia/KSpeechSupport.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/WaitObject.h"
#include "tools/taleloom-tool/ToolProject.h"
#include "tools/taleloom-tool/TraceMedia.h"
#include "windowing/KNativeLayer.h"
#include "windowing/testing/KFakeNativeLayer.h"

// The events hold their window: it must be complete before them.
#include "windowing/KWindow.h"

#include "windowing/KKeyEvent.h"
#include "windowing/KMouseEvent.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <fstream>
#include <map>
#include <thread>

namespace {

// Where the trace's clock starts; any time serves.
constexpr uint32_t kClockStart = 100000;
constexpr int32_t kControlKey = 2;

const std::pair<const char*, int32_t> kKeyNames[] = {
    { "escape", KKeyEvent::Escape },
    { "return", KKeyEvent::Return },
    { "space", ' ' },
    { "tab", KKeyEvent::Tab },
};

bool parseMilliseconds(const std::string& text, int64_t largest, int32_t& value)
{
    if (text.empty() || text.size() > 10
        || !std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c); }))
        return false;
    long long number = std::stoll(text);
    if (number > largest)
        return false;
    value = int32_t(number);
    return true;
}

bool parseKey(const std::string& name, int32_t& code)
{
    if (name.size() == 1 && std::isprint(static_cast<unsigned char>(name[0]))) {
        code = static_cast<unsigned char>(name[0]);
        return true;
    }
    for (const auto& [known, value] : kKeyNames) {
        if (name == known) {
            code = value;
            return true;
        }
    }
    return false;
}

// The answers a play without a window needs, and what it records: the end
// of the play, the warnings the program would show, the lit words.
class TraceHost : public TapeHost {
public:
    TraceHost(TraceResult& result, std::vector<std::string>& warnings, const std::string& path)
        : result(result)
        , warnings(warnings)
        , path(path)
        , previous(&TapeHost::get())
    {
        TapeHost::install(this);
    }
    ~TraceHost() override { TapeHost::install(previous); }
    TraceHost(const TraceHost&) = delete;
    TraceHost& operator=(const TraceHost&) = delete;

    void stopAction(Tape& tape) override { tape.stopPlaying(); }
    void alert(const KString&, const KString& text) override { warn(KTextCodec::toUtf8(text)); }
    void checkSpeechEngine() override
    {
        if (!KSpeechSupport::hasEngine())
            warn("no speech synthesis is installed: speech passes without a voice");
    }
    void checkMovieEngine() override
    {
        if (KMovieSupport::availableEngines() == 0)
            warn("no movie player is installed: movies pass at once");
    }
    void checkSoundOutput() override
    {
        if (KSoundSupport::availableEngines() == 0)
            warn("no sound player is installed: sounds pass at once");
    }
    void warnSpeechFailed(const KString& voice) override
    {
        warn("the voice \"" + KTextCodec::toUtf8(voice) + "\" could not speak: its speech passes");
    }
    bool isMouseButtonDown() override { return buttonDown; }
    void wordLit(TapeObject& element, int32_t wordStart, int32_t wordLength) override
    {
        if (wordLength <= 0)
            result.cleared.push_back({ indexOf(element), nowMs });
        else
            result.words.push_back({ indexOf(element), wordStart, wordLength, nowMs });
    }

    Tape* tape = nullptr;
    int32_t nowMs = 0;
    bool buttonDown = false;

private:
    // Each warning once.
    void warn(const std::string& text)
    {
        std::string line = path + ": " + text;
        if (std::find(warnings.begin(), warnings.end(), line) == warnings.end())
            warnings.push_back(line);
    }
    int32_t indexOf(TapeObject& element) const
    {
        for (int32_t i = 0; tape && i < tape->getCount(); ++i) {
            if (tape->getAt(i) == &element)
                return i;
        }
        return -1;
    }

    TraceResult& result;
    std::vector<std::string>& warnings;
    std::string path;
    TapeHost* previous;
};

// A clock moved by hand in place of the native layer, for the scope.
class TraceClock {
public:
    TraceClock()
        : previous(KNativeLayer::current())
    {
        KNativeLayer::install(&layer);
        layer.setTime(kClockStart);
    }
    ~TraceClock() { KNativeLayer::install(previous); }
    TraceClock(const TraceClock&) = delete;
    TraceClock& operator=(const TraceClock&) = delete;

    void setTime(uint32_t time) { layer.setTime(time); }
    uint32_t now() const { return layer.now(); }

private:
    KFakeNativeLayer layer;
    KNativeLayer* previous;
};

// Sound and speech on the clock, for the scope.
class TraceMedia {
public:
    TraceMedia()
        : manager(new KMediaManager())
    {
        kRegisterMultimediaClasses();
        TraceSoundPlayer::install();
        KSpeechSupport::setEngine(&speechEngine);
        manager->setSupport(KMediaManager::SoundSupport, new KSoundSupport());
        manager->setSupport(KMediaManager::SpeechSupport, new KSpeechSupport());
        manager->setUp(KMediaManager::SoundSupport | KMediaManager::SpeechSupport);
    }
    ~TraceMedia()
    {
        manager->unloadAllMedia();
        manager->closeMediaSupport();
        manager.clear();
        KSpeechSupport::setEngine(nullptr);
        TraceSoundPlayer::uninstall();
    }
    TraceMedia(const TraceMedia&) = delete;
    TraceMedia& operator=(const TraceMedia&) = delete;

    KMediaManagerPtr manager;

private:
    TraceSpeechEngine speechEngine;
};

// Follows the elements through the ticks: an element starts on the tick it
// is taken up and ends on the tick it lets go of the tape.
class ElementLog {
public:
    explicit ElementLog(TraceResult& result)
        : result(result)
    {
    }
    void started(Tape& tape, int32_t index, int32_t timeMs)
    {
        TapeObject* element = tape.getAt(index);
        open[element] = result.elements.size();
        result.elements.push_back({ index, element->getType(), timeMs, -1 });
    }
    void ended(TapeObject* element, int32_t timeMs)
    {
        auto found = open.find(element);
        if (found == open.end())
            return;
        result.elements[found->second].endMs = timeMs;
        open.erase(found);
    }

private:
    TraceResult& result;
    std::map<TapeObject*, size_t> open;
};

struct TraceRun {
    Tape& tape;
    TraceHost& host;
    TraceMedia& media;
    TraceClock& clock;
    TraceResult& result;
    SceneTapePage& page;
    const TraceOptions& options;
    uint32_t zero = 0;
    int32_t interval = Tape::kDefaultPlayInterval;
    // When the wait that plays now began listening for the user, or -1.
    int32_t listeningSince = -1;
};

// An export cannot wait for a child: a wait for the user is answered after
// the time the options give, as if clicked.
void answerWaits(TraceRun& run, int32_t nowMs)
{
    if (run.options.answerWaitsAfterMs < 0)
        return;
    auto* wait = dynamic_cast<WaitObject*>(run.tape.getPlayingObject());
    if (!wait || wait->getPhase() != WaitObject::User) {
        run.listeningSince = -1;
        return;
    }
    if (run.listeningSince < 0)
        run.listeningSince = nowMs;
    if (nowMs - run.listeningSince < run.options.answerWaitsAfterMs)
        return;
    TraceInput click;
    click.timeMs = nowMs;
    run.result.inputs.push_back(click);
    run.listeningSince = -1;
}

// Input due by now goes to the tape as the main window gives it: keys the
// element does not take may stop the play; a click's button goes down
// before the tick and up after it.
bool deliverInputs(TraceRun& run, int32_t nowMs)
{
    bool pressed = false;
    for (TraceInput& input : run.result.inputs) {
        if (input.deliveredMs >= 0 || input.timeMs > nowMs || !run.tape.isPlaying())
            continue;
        input.deliveredMs = nowMs;
        if (input.kind == TraceInput::Kind::Click) {
            KPtr<KMouseEvent> down = kAdopt(new KMouseEvent(KMouseEvent::Down, nullptr));
            down->setButton(KMouseEvent::Left);
            down->setButtonDown(true);
            run.host.buttonDown = true;
            run.tape.handleMouseDown(*down);
            pressed = true;
            continue;
        }
        KPtr<KKeyEvent> key = kAdopt(new KKeyEvent(KKeyEvent::KeyDown, nullptr, input.keyCode, 0));
        if (run.tape.handleKeyDown(*key) == 0
            && (input.keyCode == KKeyEvent::Escape || (input.keyCode == '.' && (key->getModifiers() & kControlKey))))
            run.tape.stopPlaying();
    }
    return pressed;
}

void releaseButton(TraceRun& run)
{
    KPtr<KMouseEvent> up = kAdopt(new KMouseEvent(KMouseEvent::Up, nullptr));
    up->setButton(KMouseEvent::Left);
    run.host.buttonDown = false;
    run.tape.handleMouseUp(*up);
}

// One tick at story time `nowMs`; false when the trace is over.
bool traceTick(TraceRun& run, ElementLog& log, int32_t nowMs)
{
    run.clock.setTime(run.zero + uint32_t(nowMs));
    run.host.nowMs = nowMs;
    // An answer ends a wait as it arrives, between ticks; a stop key ends
    // the play, which is no end of the element.
    auto noteAnswer = [&](TapeObject* waiting) {
        if (waiting && run.tape.isPlaying() && run.tape.getPlayingObject() != waiting)
            log.ended(waiting, nowMs);
    };
    answerWaits(run, nowMs);
    TapeObject* waiting = run.tape.getPlayingObject();
    bool pressed = deliverInputs(run, nowMs);
    noteAnswer(waiting);
    run.media.manager->idle();
    if (!run.tape.isPlaying())
        return false;
    TapeObject* before = run.tape.getPlayingObject();
    int32_t index = run.tape.getPlayIndex();
    TapeObject* starting = before ? nullptr : run.tape.getAt(index);
    if (starting && !starting->isActive())
        starting = nullptr;
    run.tape.handleTimer();
    if (starting) {
        log.started(run.tape, index, nowMs);
        if (run.tape.getPlayingObject() != starting)
            log.ended(starting, nowMs);
    } else if (before && run.tape.getPlayingObject() != before) {
        log.ended(before, nowMs);
    }
    if (pressed) {
        waiting = run.tape.getPlayingObject();
        releaseButton(run);
        noteAnswer(waiting);
    }
    run.result.endMs = nowMs;
    if (run.options.observer && !run.options.observer->ticked(run.tape, run.page, nowMs)) {
        run.tape.stopPlaying();
        return false;
    }
    // A looping story is traced once through.
    if (run.tape.isPlaying() && run.tape.isLooping() && run.tape.getPlayIndex() < index) {
        run.tape.stopPlaying();
        return false;
    }
    // A movie plays by the real clock: the tick takes its time.
    TapeObject* playing = run.tape.getPlayingObject();
    if (playing && playing->getType() == MovieType)
        std::this_thread::sleep_for(std::chrono::milliseconds(run.interval));
    return run.tape.isPlaying();
}

void playTraced(TraceRun& run, int32_t limitMs)
{
    ElementLog log(run.result);
    run.tape.startPlaying(0);
    run.zero = run.clock.now() + uint32_t(run.interval);
    if (TraceAudioLog* log = run.options.audioLog)
        log->setZero(run.zero);
    run.result.tickMs = run.interval;
    if (!run.tape.isPlaying()) {
        run.result.finished = true;
        return;
    }
    int32_t nowMs = 0;
    while (traceTick(run, log, nowMs)) {
        if (nowMs > limitMs - run.interval) {
            run.tape.stopPlaying();
            return;
        }
        nowMs += run.interval;
    }
    run.result.finished = true;
    run.tape.stopPlaying();
}

// --- The command ---------------------------------------------------------------------

struct TraceRequest {
    std::string story;
    std::string output;
    std::vector<TraceInput> inputs;
    int32_t limitMs = kDefaultTraceLimitMs;
};

bool parseRequest(const std::vector<std::string>& arguments, TraceRequest& request)
{
    bool limitGiven = false;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        bool hasValue = i + 1 < arguments.size();
        if (argument == "-o" && hasValue && request.output.empty()) {
            request.output = arguments[++i];
        } else if (argument == "--input" && hasValue) {
            TraceInput input;
            if (!parseTraceInput(arguments[++i], input))
                return false;
            request.inputs.push_back(input);
        } else if (argument == "--limit" && hasValue && !limitGiven) {
            limitGiven = true;
            if (!parseMilliseconds(arguments[++i], INT32_MAX / 2, request.limitMs))
                return false;
        } else if (request.story.empty() && !argument.empty() && argument[0] != '-') {
            request.story = argument;
        } else {
            return false;
        }
    }
    return !request.story.empty() && !request.output.empty();
}

int runTrace(const std::vector<std::string>& arguments, std::ostream&, std::ostream& err)
{
    TraceRequest request;
    if (!parseRequest(arguments, request))
        return toolUsageError(traceCommand(), err);
    TraceResult result;
    std::string reason;
    std::vector<std::string> warnings;
    bool done = traceStory(request.story, request.inputs, request.limitMs, result, reason, warnings);
    for (const std::string& warning : warnings)
        err << "taleloom-tool: warning: " << warning << '\n';
    if (!done)
        return toolInputError(reason, err);
    std::ofstream out(request.output, std::ios::binary | std::ios::trunc);
    out << traceJson(result) << '\n';
    out.close();
    if (!out)
        return toolInputError(request.output + ": cannot write the trace", err);
    return kToolSucceeded;
}

void timeMember(KJsonWriter& writer, const char* name, int32_t ms)
{
    writer.key(name);
    if (ms < 0)
        writer.nullValue();
    else
        writer.value(ms);
}

} // namespace

ToolCommand traceCommand()
{
    return { "trace", "STORY.TPD -o TRACE.json [--input click@MS] [--input key:K@MS] [--limit MS]", &runTrace };
}

bool parseTraceInput(const std::string& text, TraceInput& input)
{
    size_t at = text.rfind('@');
    if (at == std::string::npos || !parseMilliseconds(text.substr(at + 1), INT32_MAX / 2, input.timeMs))
        return false;
    std::string what = text.substr(0, at);
    if (what == "click") {
        input.kind = TraceInput::Kind::Click;
        return true;
    }
    if (what.rfind("key:", 0) != 0)
        return false;
    input.kind = TraceInput::Kind::Key;
    return parseKey(what.substr(4), input.keyCode);
}

bool traceStory(const std::string& path, const std::vector<TraceInput>& inputs, int32_t limitMs, TraceResult& result,
                std::string& reason, std::vector<std::string>& warnings)
{
    TraceOptions options;
    options.inputs = inputs;
    options.limitMs = limitMs;
    return traceStory(path, options, result, reason, warnings);
}

bool traceStory(const std::string& path, const TraceOptions& options, TraceResult& result, std::string& reason,
                std::vector<std::string>& warnings)
{
    // Nothing is heard: the players only tell the lengths.
    setenv("TALELOOM_AUDIO", "null", 1);
    result = TraceResult();
    result.inputs = options.inputs;
    TraceClock clock;
    TraceHost host(result, warnings, path);
    TraceMedia media;
    StylusProjectPtr project(new StylusProject());
    if (!loadToolProject(path, *project, reason, warnings))
        return false;
    Tape& tape = *project->getTape();
    host.tape = &tape;
    // Without pictures the play draws on a page of one pixel: the times are
    // the same, the drawing is next to nothing.
    KGraphicSize pageSize = options.withoutPictures ? KGraphicSize(1, 1) : tape.getPageSize();
    KPtr<SceneTapePage> page(new SceneTapePage(pageSize));
    if (KDirectory* actors = project->getActorsDirectory())
        loadTapeActors(tape, *actors);
    tape.setSpriteSystem(*page);
    TraceRun run { tape, host, media, clock, result, *page, options };
    run.interval = std::max(1, tape.getPlayInterval());
    playTraced(run, options.limitMs);
    if (options.audioLog)
        options.audioLog->closeAll(result.endMs);
    tape.clearSpriteSystem();
    return true;
}

std::string traceJson(const TraceResult& result)
{
    KJsonWriter writer;
    writer.beginObject();
    writer.member("tick", result.tickMs);
    writer.member("end", result.endMs);
    writer.member("finished", result.finished);
    writer.key("elements");
    writer.beginArray();
    for (const TraceElement& element : result.elements) {
        writer.beginObject();
        writer.member("index", element.index);
        writer.member("type", element.type);
        writer.member("kind", toolElementKind(element.type));
        timeMember(writer, "start", element.startMs);
        timeMember(writer, "end", element.endMs);
        writer.endObject();
    }
    writer.endArray();
    writer.key("words");
    writer.beginArray();
    for (const TraceWord& word : result.words) {
        writer.beginObject();
        writer.member("element", word.element);
        writer.member("wordStart", word.wordStart);
        writer.member("wordLength", word.wordLength);
        writer.member("time", word.timeMs);
        writer.endObject();
    }
    writer.endArray();
    writer.key("cleared");
    writer.beginArray();
    for (const TraceClear& clear : result.cleared) {
        writer.beginObject();
        writer.member("element", clear.element);
        writer.member("time", clear.timeMs);
        writer.endObject();
    }
    writer.endArray();
    writer.key("inputs");
    writer.beginArray();
    for (const TraceInput& input : result.inputs) {
        writer.beginObject();
        if (input.kind == TraceInput::Kind::Click) {
            writer.member("input", "click");
        } else {
            writer.member("input", "key");
            writer.member("key", input.keyCode);
        }
        writer.member("time", input.timeMs);
        timeMember(writer, "delivered", input.deliveredMs);
        writer.endObject();
    }
    writer.endArray();
    writer.endObject();
    return writer.getText();
}
