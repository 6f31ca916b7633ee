#include "tools/taleloom-tool/SoundCommands.h"

#include "kernel/KFileReference.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KPath.h"
#include "kernel/KTextCodec.h"
#include "kernel/KVariable.h"
#include "kmultimedia/KMediaFeedbackEvent.h"
#include "kmultimedia/KMediaManager.h"
#include "kmultimedia/KMultimediaClasses.h"
#include "kmultimedia/KSound.h"
#include "kmultimedia/KSoundRecorder.h"
#include "kmultimedia/KSoundSupport.h"
#include "kmultimedia/KSpeech.h"
#include "kmultimedia/KSpeechSupport.h"

#include <chrono>
#include <cmath>
#include <functional>
#include <ostream>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// The media manager with the supports the command needs, open while in
// scope.
class ToolMedia {
public:
    explicit ToolMedia(int32_t which)
        : manager(new KMediaManager())
    {
        kRegisterMultimediaClasses();
        if (which & KMediaManager::SoundSupport)
            manager->setSupport(KMediaManager::SoundSupport, new KSoundSupport());
        if (which & KMediaManager::SpeechSupport)
            manager->setSupport(KMediaManager::SpeechSupport, new KSpeechSupport());
        manager->setUp(which);
    }
    ~ToolMedia() { manager->closeMediaSupport(); }
    ToolMedia(const ToolMedia&) = delete;
    ToolMedia& operator=(const ToolMedia&) = delete;

    // Idle passes every 5 ms until the condition holds or the limit passes.
    bool runUntil(const std::function<bool()>& done, double limitMs)
    {
        Clock::time_point start = Clock::now();
        while (!done()) {
            if (millisecondsSince(start) > limitMs)
                return false;
            manager->idle();
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return true;
    }

    KMediaManagerPtr manager;
};

bool parseNumber(const std::string& text, double low, double high, double& out)
{
    try {
        size_t used = 0;
        double value = std::stod(text, &used);
        if (used != text.size() || !std::isfinite(value) || value < low || value > high)
            return false;
        out = value;
        return true;
    } catch (...) {
        return false;
    }
}

// Options of the form "--name value", flags of the form "--name", and one
// positional argument at most.
struct Options {
    std::string positional;
    std::vector<std::pair<std::string, std::string>> values;
    std::vector<std::string> flags;

    const std::string* value(const std::string& name) const
    {
        for (const auto& [key, text] : values) {
            if (key == name)
                return &text;
        }
        return nullptr;
    }
    bool flag(const std::string& name) const { return std::find(flags.begin(), flags.end(), name) != flags.end(); }
};

bool parseOptions(const std::vector<std::string>& arguments, const std::vector<std::string>& valued,
                  const std::vector<std::string>& flagged, bool wantsPositional, Options& options)
{
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        bool isValued = std::find(valued.begin(), valued.end(), argument) != valued.end();
        bool isFlag = std::find(flagged.begin(), flagged.end(), argument) != flagged.end();
        if (isValued && i + 1 < arguments.size() && !options.value(argument))
            options.values.emplace_back(argument, arguments[++i]);
        else if (isFlag && !options.flag(argument))
            options.flags.push_back(argument);
        else if (wantsPositional && options.positional.empty() && !argument.empty() && argument[0] != '-')
            options.positional = argument;
        else
            return false;
    }
    return !wantsPositional || !options.positional.empty();
}

// --- voices -----------------------------------------------------------------------

int runVoices(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err)
{
    Options options;
    if (!parseOptions(arguments, { "--language" }, {}, false, options))
        return toolUsageError(voicesCommand(), err);
    ToolMedia media(KMediaManager::SpeechSupport);
    auto* support = KSpeechSupport::current();
    if (!support || support->getVoices().empty())
        return toolInputError("no speech synthesis is installed", err);
    const std::string* language = options.value("--language");
    std::vector<KString> names = language ? support->getVoicesFor(*language) : support->getVoices();
    KJsonWriter writer;
    writer.beginObject();
    writer.key("voices");
    writer.beginArray();
    for (const KString& name : names)
        writer.value(name);
    writer.endArray();
    writer.member("default", support->getDefaultVoice());
    writer.endObject();
    out << writer.getText() << '\n';
    return kToolSucceeded;
}

// --- speak ------------------------------------------------------------------------

// Keeps the words of a speech as they are told.
class WordRecorder : public KThing {
public:
    KEventReturn handleEvent(KEvent& event) override
    {
        auto* feedback = dynamic_cast<KMediaFeedbackEvent*>(&event);
        if (!feedback)
            return 0;
        KVariable* start = feedback->getValue(KMediaFeedbackEvent::kWordStart);
        KVariable* length = feedback->getValue(KMediaFeedbackEvent::kWordLength);
        KVariable* time = feedback->getValue(KMediaFeedbackEvent::kElapsedTime);
        if (start && length && time)
            words.push_back({ start->getLong(), length->getLong(), time->getLong() });
        return 1;
    }
    struct Word {
        int32_t start, length, time;
    };
    std::vector<Word> words;
};

int runSpeak(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err)
{
    Options options;
    double speed = 0.5;
    double volume = 1.0;
    if (!parseOptions(arguments, { "--voice", "--speed", "--volume", "-o" }, { "--events" }, true, options)
        || !options.value("-o") || (options.value("--speed") && !parseNumber(*options.value("--speed"), 0, 1, speed))
        || (options.value("--volume") && !parseNumber(*options.value("--volume"), 0, 1, volume)))
        return toolUsageError(speakCommand(), err);
    ToolMedia media(KMediaManager::SpeechSupport);
    auto* support = KSpeechSupport::current();
    if (!support || support->getVoices().empty())
        return toolInputError("no speech synthesis is installed", err);
    KString voice
        = options.value("--voice") ? KTextCodec::fromUtf8(*options.value("--voice")) : support->getDefaultVoice();
    KPtr<WordRecorder> words(new WordRecorder());
    KSpeechPtr speech(new KSpeech());
    speech->getMediaFlags().set(KAbstractMedia::WordFeedback);
    speech->addTarget(*words);
    speech->setRenderFile(*options.value("-o"));
    speech->setSpeed(speed);
    speech->setVolume(volume);
    speech->speak(voice, KTextCodec::fromUtf8(options.positional));
    bool finished = media.runUntil([&] { return !speech->isPlaying(); }, 120000);
    speech->removeTarget(*words);
    speech->unload();
    if (!finished)
        return toolInputError("the speech did not finish", err);
    if (options.flag("--events")) {
        KJsonWriter writer;
        writer.beginArray();
        for (const WordRecorder::Word& word : words->words) {
            writer.beginObject();
            writer.member("wordStart", word.start);
            writer.member("wordLength", word.length);
            writer.member("time", word.time);
            writer.endObject();
        }
        writer.endArray();
        out << writer.getText() << '\n';
    }
    return kToolSucceeded;
}

// --- play -------------------------------------------------------------------------

int runPlay(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err)
{
    Options options;
    double volume = 1.0;
    double balance = 0.0;
    if (!parseOptions(arguments, { "--volume", "--balance", "--to-file" }, { "--json" }, true, options)
        || (options.value("--volume") && !parseNumber(*options.value("--volume"), 0, 1, volume))
        || (options.value("--balance") && !parseNumber(*options.value("--balance"), -1, 1, balance)))
        return toolUsageError(playCommand(), err);
    ToolMedia media(KMediaManager::SoundSupport);
    Clock::time_point start = Clock::now();
    KSoundPtr sound(new KSound());
    sound->createFromFile(KFileReference(KPath(KTextCodec::fromUtf8(options.positional), KPath::kHostPlatform)));
    if (const std::string* target = options.value("--to-file"))
        sound->setRenderFile(*target);
    sound->setVolume(volume);
    sound->setBalance(balance);
    sound->load();
    KAbstractMedia::Status status = sound->getStatus();
    double duration = sound->getDuration();
    double loadMs = millisecondsSince(start);
    bool finished = true;
    if (status == KAbstractMedia::Loaded) {
        sound->play();
        finished = media.runUntil([&] { return !sound->isPlaying(); }, std::max(30000.0, duration * 3000.0));
        sound->unload();
    }
    double tookMs = millisecondsSince(start);
    if (options.flag("--json")) {
        KJsonWriter writer;
        writer.beginObject();
        writer.member("status", int32_t(status));
        writer.member("duration", duration);
        writer.member("loadMs", loadMs);
        writer.member("tookMs", tookMs);
        writer.member("finished", finished);
        writer.endObject();
        out << writer.getText() << '\n';
    } else {
        out << "status " << int32_t(status) << ", duration " << duration << " s, took " << tookMs / 1000.0 << " s\n";
    }
    if (status == KAbstractMedia::NotLoaded)
        return toolInputError("the sound cannot be played", err);
    return finished ? kToolSucceeded : toolInputError("the sound did not finish", err);
}

// --- record -----------------------------------------------------------------------

int runRecord(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err)
{
    Options options;
    double seconds = 0;
    if (!parseOptions(arguments, { "--seconds", "-o" }, {}, false, options) || !options.value("-o")
        || !options.value("--seconds") || !parseNumber(*options.value("--seconds"), 0.1, 3600, seconds))
        return toolUsageError(recordCommand(), err);
    ToolMedia media(KMediaManager::SoundSupport);
    KSoundRecorderPtr recorder(new KSoundRecorder());
    if (!recorder->startRecording(*options.value("-o")))
        return toolInputError(recorder->getFailureText() ? recorder->getFailureText() : "recording failed", err);
    Clock::time_point start = Clock::now();
    while (recorder->isRecording() && millisecondsSince(start) < seconds * 1000.0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(KSoundRecorder::kDrainInterval));
        recorder->drain();
    }
    recorder->stopRecording();
    out << "recorded " << recorder->getSeconds() << " s, " << recorder->getBytes() << " bytes\n";
    if (const char* failure = recorder->getFailureText())
        return toolInputError(failure, err);
    return kToolSucceeded;
}

} // namespace

ToolCommand voicesCommand() { return { "voices", "[--language L]", &runVoices }; }

ToolCommand speakCommand()
{
    return { "speak", "TEXT [--voice V] [--speed S] [--volume V] -o OUT.wav [--events]", &runSpeak };
}

ToolCommand playCommand()
{
    return { "play", "FILE [--volume V] [--balance B] [--to-file OUT.wav] [--json]", &runPlay };
}

ToolCommand recordCommand() { return { "record", "--seconds N -o OUT.wav", &runRecord }; }
