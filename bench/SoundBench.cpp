// Sound, speech and recording on the real GStreamer and espeak-ng, without a
// sound card (TALELOOM_AUDIO=null). Each benchmark measures its bound in the
// same run, on the same machine, and reports the ratio to it.
//
// BM_SoundLoad: loading a sound file (KSound's createFromFile and load, to
// its preroll) against a bare playbin prerolling the same file into a
// fakesink, alternated, medians over the repeats. Counters: load_ms,
// playbin_ms, "x_bound" = load / playbin (target <= 1.3). Arg 0 WAV, 1 MP3.
//
// BM_RecordingAcrossAStall: a take recorded through the event loop (its
// 33 ms drain timer) for a second, then a 500 ms stall of the loop, then
// half a second more. Counters: seconds (from the start to the stop),
// bytes, "captured_ratio" = bytes / (44100 x seconds) (target >= 0.99).
//
// BM_LoopTurnWhileSpeaking: the event thread's longest turn (the time a turn
// takes, less the time it waited for events) for two seconds of an idle
// loop with a 20 ms timer, and while a long text is spoken. Counters:
// idle_turn_max_ms, speaking_turn_max_ms, bound_ms = 1.5 x idle + 5,
// "x_bound" = speaking / bound (target <= 1), and speech_played.

#include "bench/LatencyReport.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "kmultimedia/KMediaManager.h"
#include "kmultimedia/KMultimediaClasses.h"
#include "kmultimedia/KSound.h"
#include "kmultimedia/KSoundRecorder.h"
#include "kmultimedia/KSoundSupport.h"
#include "kmultimedia/KSpeech.h"
#include "kmultimedia/KSpeechSupport.h"
#include "kmultimedia/KWavFormat.h"
#include "kmultimedia/KWavWriter.h"
#include "windowing/KApplication.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KTimer.h"
#include "windowing/KTimerManager.h"
#include "windowing/native/KGLibNativeLayer.h"

#include <benchmark/benchmark.h>
#include <gst/gst.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
constexpr int kLoadRepeats = 15;

double msBetween(Clock::time_point from, Clock::time_point to)
{
    return std::chrono::duration<double, std::milli>(to - from).count();
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0.0 : values[values.size() / 2];
}

// The loop's native layer, noting how long the loop waited for events.
class TimedLayer : public KGLibNativeLayer {
public:
    void processNativeMessage(bool block, bool& keepRunning, int32_t waitMs) override
    {
        Clock::time_point start = Clock::now();
        KGLibNativeLayer::processNativeMessage(block, keepRunning, waitMs);
        if (block)
            waited += msBetween(start, Clock::now());
    }
    double waited = 0.0;
};

// The framework on a real loop, as the program runs it headless.
class Framework {
public:
    Framework()
    {
        setenv("TALELOOM_AUDIO", "null", 0);
        KNativeLayer::install(&layer);
        knsEnterKernel();
        kRegisterMultimediaClasses();
        application = kAdopt(new KApplication());
        application->setAppFlags(KApplication::Running);
        manager = kAdopt(new KMediaManager());
        manager->setSupport(KMediaManager::SoundSupport, new KSoundSupport());
        manager->setSupport(KMediaManager::SpeechSupport, new KSpeechSupport());
        manager->setUp(KMediaManager::SoundSupport | KMediaManager::SpeechSupport);
    }
    ~Framework()
    {
        manager->unloadAllMedia();
        manager->closeMediaSupport();
        manager.clear();
        application.clear();
        KTimerManager::destroy();
        knsExitKernel();
        KNativeLayer::install(nullptr);
    }
    // The length of one turn, less its waiting.
    double turn()
    {
        double before = layer.waited;
        Clock::time_point start = Clock::now();
        application->doOneLoop();
        return msBetween(start, Clock::now()) - (layer.waited - before);
    }
    void runFor(double ms)
    {
        Clock::time_point start = Clock::now();
        while (msBetween(start, Clock::now()) < ms)
            application->doOneLoop();
    }

    TimedLayer layer;
    KPtr<KApplication> application;
    KMediaManagerPtr manager;
};

std::string temporary(const char* name) { return (std::filesystem::temp_directory_path() / name).string(); }

KFileReference referenceTo(const std::string& path)
{
    return KFileReference(KPath(KString(path.c_str()), KPath::kHostPlatform));
}

// Three seconds of a tone, as a WAV file and as an MP3 made by GStreamer.
bool makeSound(const std::string& path, bool mp3)
{
    if (!mp3) {
        KWavWriter writer;
        KWavFormat format = KWavFormat::forRecording();
        if (writer.open(path, format) != KWavWriter::Written)
            return false;
        std::vector<uint8_t> samples;
        for (int i = 0; i < format.sampleRate * 3; ++i) {
            auto value = int16_t(10000.0 * std::sin(2.0 * M_PI * 440.0 * i / format.sampleRate));
            samples.push_back(uint8_t(uint16_t(value) & 0xFF));
            samples.push_back(uint8_t(uint16_t(value) >> 8));
        }
        writer.write(samples.data(), samples.size());
        return writer.close() == KWavWriter::Written;
    }
    gst_init(nullptr, nullptr);
    std::string description
        = "audiotestsrc num-buffers=130 ! audioconvert ! lamemp3enc ! filesink location=\"" + path + "\"";
    GstElement* pipeline = gst_parse_launch(description.c_str(), nullptr);
    if (!pipeline)
        return false;
    gst_element_set_state(pipeline, GST_STATE_PLAYING);
    GstBus* bus = gst_element_get_bus(pipeline);
    GstMessage* end
        = gst_bus_timed_pop_filtered(bus, 10 * GST_SECOND, GstMessageType(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
    bool made = end && GST_MESSAGE_TYPE(end) == GST_MESSAGE_EOS;
    if (end)
        gst_message_unref(end);
    gst_object_unref(bus);
    gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_object_unref(pipeline);
    return made;
}

// A bare playbin prerolled into a fakesink: the least a load can cost.
double playbinPreroll(const std::string& path)
{
    Clock::time_point start = Clock::now();
    GstElement* bin = gst_element_factory_make("playbin", nullptr);
    GstElement* sink = gst_element_factory_make("fakesink", nullptr);
    g_object_set(sink, "sync", TRUE, nullptr);
    gchar* uri = gst_filename_to_uri(path.c_str(), nullptr);
    g_object_set(bin, "uri", uri, "audio-sink", sink, nullptr);
    g_free(uri);
    gst_element_set_state(bin, GST_STATE_PAUSED);
    gst_element_get_state(bin, nullptr, nullptr, 5 * GST_SECOND);
    double ms = msBetween(start, Clock::now());
    gst_element_set_state(bin, GST_STATE_NULL);
    gst_object_unref(bin);
    return ms;
}

double soundLoad(const std::string& path, bool& loaded)
{
    Clock::time_point start = Clock::now();
    KSoundPtr sound(new KSound());
    sound->createFromFile(referenceTo(path));
    loaded = sound->load();
    double ms = msBetween(start, Clock::now());
    sound->unload();
    return ms;
}

void BM_SoundLoad(benchmark::State& state)
{
    bool mp3 = state.range(0) != 0;
    std::string path = temporary(mp3 ? "taleloom-load-bench.mp3" : "taleloom-load-bench.wav");
    Framework framework;
    if (!makeSound(path, mp3)) {
        state.SkipWithError("the sound could not be made");
        return;
    }
    std::vector<double> loads;
    std::vector<double> prerolls;
    bool allLoaded = true;
    for (auto _ : state) {
        // Both once before measuring, so that neither pays for the plugins'
        // first loading.
        bool loaded = false;
        soundLoad(path, loaded);
        playbinPreroll(path);
        for (int i = 0; i < kLoadRepeats; ++i) {
            loads.push_back(soundLoad(path, loaded));
            allLoaded = allLoaded && loaded;
            prerolls.push_back(playbinPreroll(path));
        }
    }
    std::filesystem::remove(path);
    state.counters["load_ms"] = median(loads);
    state.counters["playbin_ms"] = median(prerolls);
    state.counters["x_bound"] = median(loads) / std::max(median(prerolls), 1e-3);
    state.counters["loaded"] = allLoaded ? 1 : 0;
}

void BM_RecordingAcrossAStall(benchmark::State& state)
{
    std::string path = temporary("taleloom-stall-bench.wav");
    Framework framework;
    double seconds = 0.0;
    uint32_t bytes = 0;
    for (auto _ : state) {
        KSoundRecorderPtr recorder(new KSoundRecorder());
        if (!recorder->startRecording(path)) {
            state.SkipWithError("no input to record from");
            return;
        }
        Clock::time_point start = Clock::now();
        framework.runFor(1000);
        // The loop stalls: a long save, a slow dialog.
        g_usleep(500 * 1000);
        framework.runFor(500);
        recorder->stopRecording();
        seconds = msBetween(start, Clock::now()) / 1000.0;
        bytes = recorder->getBytes();
    }
    std::filesystem::remove(path);
    state.counters["seconds"] = seconds;
    state.counters["bytes"] = bytes;
    state.counters["captured_ratio"] = double(bytes) / (44100.0 * seconds);
}

// A timer that does nothing: the tape's play timer at rest.
class Ticker : public KThing {
public:
    void timerFired(KTimer&) override { ++ticks; }
    int32_t ticks = 0;
};

void BM_LoopTurnWhileSpeaking(benchmark::State& state)
{
    Framework framework;
    if (!KSpeechSupport::hasEngine()) {
        state.SkipWithError("no speech engine");
        return;
    }
    std::vector<double> idle;
    std::vector<double> speaking;
    bool heard = false;
    for (auto _ : state) {
        KPtr<Ticker> ticker(new Ticker());
        KTimerPtr timer(new KTimer());
        timer->setInterval(20);
        timer->setRepeat(true);
        timer->setTarget(ticker.get());
        timer->start();
        Clock::time_point start = Clock::now();
        while (msBetween(start, Clock::now()) < 2000)
            idle.push_back(framework.turn());

        std::string text;
        while (text.size() < 2000)
            text += "Once upon a time a little fox walked through the forest to find her friends. ";
        KSpeechPtr speech(new KSpeech());
        speech->speak(KSpeechSupport::current()->getDefaultVoice(), KString(text.c_str()));
        start = Clock::now();
        while (msBetween(start, Clock::now()) < 2000 && !speech->isDonePlaying()) {
            speaking.push_back(framework.turn());
            heard = heard || speech->isPlaying();
        }
        speech->stop();
        timer->stop();
        timer->setTarget(nullptr);
    }
    double idleMax = idle.empty() ? 0.0 : *std::max_element(idle.begin(), idle.end());
    double speakingMax = speaking.empty() ? 0.0 : *std::max_element(speaking.begin(), speaking.end());
    double bound = 1.5 * idleMax + 5.0;
    report(state, "idle_turn", idle);
    report(state, "speaking_turn", speaking);
    state.counters["bound_ms"] = bound;
    state.counters["speech_played"] = heard ? 1 : 0;
    state.counters["x_bound"] = speakingMax / bound;
}

} // namespace

BENCHMARK(BM_SoundLoad)->Arg(0)->Arg(1)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RecordingAcrossAStall)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoopTurnWhileSpeaking)->Iterations(1)->Unit(benchmark::kMillisecond);
