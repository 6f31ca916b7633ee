// Speech on espeak-ng and GStreamer. espeak-ng is not reentrant, so one
// worker thread owns it: it starts the engine, lists the voices and then
// synthesises one request at a time, synchronously, into buffers that go
// straight into the requesting speech's appsrc. Each speech plays through
// its own pipeline (appsrc, volume, the sink), which gives pause and resume
// and lets several speeches sound at once. Word reports wait in the
// request's channel until the event thread takes them.

#include "kmultimedia/KSpeechNative.h"
#include "kmultimedia/native/KGstSupport.h"

#include <espeak-ng/speak_lib.h>
#include <gst/app/gstappsrc.h>
#include <gst/gst.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <thread>

namespace {

// Milliseconds of audio in each buffer the engine hands over: small, so
// that the first sound comes early.
constexpr int kBufferMs = 60;
constexpr guint64 kQueueLimitBytes = 64u * 1024u * 1024u;

// What a request and its speech share across the two threads.
struct Channel {
    std::mutex lock; // held while pushing, so that a cancel is final
    GstAppSrc* source = nullptr;
    bool cancelled = false;
    guint64 samples = 0;
    int32_t rate = 22050;
    std::vector<KSpeechRawWord> words;
    bool finished = false;

    ~Channel()
    {
        if (source)
            gst_object_unref(source);
    }
};

class KEspeakEngine final : public KSpeechEngine {
public:
    ~KEspeakEngine() override { shutdown(); }

    const std::vector<KSpeechVoiceInfo>& voices() override
    {
        ensureStarted();
        return voiceList;
    }
    KSpeechNative* createSpeech() override;
    void shutdown() override;

    int32_t sampleRate()
    {
        ensureStarted();
        return rate;
    }
    // Runs the request on the worker after those before it.
    void submit(std::shared_ptr<Channel> channel, KSpeechRequest request);

private:
    void ensureStarted();
    void run(std::promise<void> started);
    void startEngine();
    void synthesise(Channel& channel, const KSpeechRequest& request);
    static int onSynth(short* samples, int count, espeak_EVENT* events);

    std::mutex lock;
    std::condition_variable wake;
    std::deque<std::function<void()>> jobs;
    bool stopping = false;
    std::thread worker;
    bool started = false;
    bool initialised = false;
    // Set while shutting down: the synthesis under way gives up at its next
    // buffer.
    static std::atomic<bool> aborting;
    std::vector<KSpeechVoiceInfo> voiceList;
    int32_t rate = 0;

    // The request being synthesised; touched only by the worker.
    static thread_local Channel* current;
};

thread_local Channel* KEspeakEngine::current = nullptr;
std::atomic<bool> KEspeakEngine::aborting { false };

void KEspeakEngine::ensureStarted()
{
    if (started)
        return;
    started = true;
    stopping = false;
    std::promise<void> ready;
    std::future<void> done = ready.get_future();
    worker = std::thread(&KEspeakEngine::run, this, std::move(ready));
    done.wait();
}

// Without its data espeak-ng would end the process; with the flag it says
// so instead, and there are no voices.
void KEspeakEngine::startEngine()
{
    // espeak-ng is started once for the process: espeak_Terminate of this
    // version can wait forever for espeak-ng's own queue thread, so it is
    // left to the end of the process, and a restarted worker takes over the
    // engine as it is.
    if (initialised)
        return;
    initialised = true;
    rate = espeak_Initialize(AUDIO_OUTPUT_SYNCHRONOUS, kBufferMs, nullptr, espeakINITIALIZE_DONT_EXIT);
    if (rate <= 0) {
        rate = 0;
        return;
    }
    espeak_SetSynthCallback(&KEspeakEngine::onSynth);
    const espeak_VOICE** list = espeak_ListVoices(nullptr);
    for (int i = 0; list && list[i]; ++i) {
        KSpeechVoiceInfo info;
        info.name = list[i]->name ? list[i]->name : "";
        info.identifier = list[i]->identifier ? list[i]->identifier : "";
        // A priority byte, then a name ending in a zero, until an empty name.
        for (const char* at = list[i]->languages; at && *at;) {
            int32_t priority = static_cast<unsigned char>(*at++);
            std::string language = at;
            at += language.size() + 1;
            info.languages.emplace_back(language, priority);
        }
        if (!info.identifier.empty())
            voiceList.push_back(std::move(info));
    }
}

void KEspeakEngine::run(std::promise<void> ready)
{
    startEngine();
    ready.set_value();
    for (;;) {
        std::function<void()> job;
        {
            std::unique_lock<std::mutex> guard(lock);
            wake.wait(guard, [this] { return stopping || !jobs.empty(); });
            if (stopping && jobs.empty())
                return;
            job = std::move(jobs.front());
            jobs.pop_front();
        }
        job();
    }
}

void KEspeakEngine::submit(std::shared_ptr<Channel> channel, KSpeechRequest request)
{
    ensureStarted();
    std::lock_guard<std::mutex> guard(lock);
    jobs.emplace_back([this, channel, request = std::move(request)] { synthesise(*channel, request); });
    wake.notify_one();
}

void KEspeakEngine::synthesise(Channel& channel, const KSpeechRequest& request)
{
    {
        std::lock_guard<std::mutex> guard(channel.lock);
        if (channel.cancelled)
            return;
    }
    if (rate > 0) {
        std::string voice = request.voice + (request.female ? "+f2" : "");
        espeak_SetVoiceByName(voice.c_str());
        espeak_SetParameter(espeakRATE, std::clamp(request.wordsPerMinute, 80, 450), 0);
        espeak_SetParameter(espeakVOLUME, 100, 0);
        current = &channel;
        // Plain text: no SSML and no phoneme input, so "<" and "[[" are read.
        espeak_Synth(request.text.c_str(), request.text.size() + 1, 0, POS_CHARACTER, 0, espeakCHARS_UTF8, nullptr,
                     nullptr);
        current = nullptr;
    }
    std::lock_guard<std::mutex> guard(channel.lock);
    channel.finished = true;
    if (!channel.cancelled && channel.source)
        gst_app_src_end_of_stream(channel.source);
}

int KEspeakEngine::onSynth(short* samples, int count, espeak_EVENT* events)
{
    Channel* channel = current;
    if (!channel || aborting)
        return 1;
    std::lock_guard<std::mutex> guard(channel->lock);
    if (channel->cancelled)
        return 1;
    for (espeak_EVENT* event = events; event && event->type != espeakEVENT_LIST_TERMINATED; ++event) {
        if (event->type == espeakEVENT_WORD)
            channel->words.push_back({ event->text_position, event->audio_position });
    }
    if (samples && count > 0 && channel->source) {
        gsize bytes = gsize(count) * sizeof(short);
        GstBuffer* buffer = gst_buffer_new_memdup(samples, bytes);
        GST_BUFFER_PTS(buffer) = gst_util_uint64_scale(channel->samples, GST_SECOND, guint64(channel->rate));
        GST_BUFFER_DURATION(buffer) = gst_util_uint64_scale(guint64(count), GST_SECOND, guint64(channel->rate));
        channel->samples += guint64(count);
        gst_app_src_push_buffer(channel->source, buffer);
    }
    return 0;
}

void KEspeakEngine::shutdown()
{
    if (!started)
        return;
    {
        std::lock_guard<std::mutex> guard(lock);
        stopping = true;
        aborting = true;
        jobs.clear();
        wake.notify_one();
    }
    if (worker.joinable())
        worker.join();
    aborting = false;
    jobs.clear();
    started = false;
}

KEspeakEngine& theEngine()
{
    static KEspeakEngine engine;
    return engine;
}

class KGstSpeech final : public KSpeechNative {
public:
    ~KGstSpeech() override
    {
        cancel();
        if (pipeline) {
            gst_element_set_state(pipeline, GST_STATE_NULL);
            gst_object_unref(pipeline);
        }
    }

    bool open(const char* renderPath) override;
    bool speak(const KSpeechRequest& request) override;
    void pause() override { setState(GST_STATE_PAUSED); }
    void resume() override { setState(GST_STATE_PLAYING); }
    void cancel() override;
    void setVolume(double value) override
    {
        if (volume)
            g_object_set(volume, "volume", std::clamp(value, 0.0, 1.0), nullptr);
    }
    int32_t positionMs() const override;
    void takeWords(std::vector<KSpeechRawWord>& out) override;
    void update() override;
    bool isDone() const override { return !channel || ended; }

private:
    void setState(GstState state)
    {
        if (pipeline && channel)
            gst_element_set_state(pipeline, state);
    }

    GstElement* pipeline = nullptr;
    GstElement* source = nullptr;
    GstElement* volume = nullptr;
    std::shared_ptr<Channel> channel;
    bool ended = false;
};

bool KGstSpeech::open(const char* renderPath)
{
    int32_t rate = theEngine().sampleRate();
    if (rate <= 0 || !kgstEnsureInitialised())
        return false;
    pipeline = gst_pipeline_new(nullptr);
    source = gst_element_factory_make("appsrc", nullptr);
    volume = gst_element_factory_make("volume", nullptr);
    GstElement* convert = gst_element_factory_make("audioconvert", nullptr);
    GstElement* resample = gst_element_factory_make("audioresample", nullptr);
    GstElement* sink = renderPath ? kgstMakeWavFileSink(renderPath) : kgstMakeAudioSink();
    if (!sink && !renderPath)
        sink = gst_element_factory_make("autoaudiosink", nullptr);
    if (!pipeline || !source || !volume || !convert || !resample || !sink) {
        for (GstElement* element : { pipeline, source, volume, convert, resample, sink }) {
            if (element)
                gst_object_unref(gst_object_ref_sink(element));
        }
        pipeline = nullptr;
        return false;
    }
    gst_object_ref_sink(pipeline);
    std::string caps = "audio/x-raw,format=S16LE,layout=interleaved,channels=1,rate=" + std::to_string(rate);
    GstCaps* sourceCaps = gst_caps_from_string(caps.c_str());
    g_object_set(source, "caps", sourceCaps, "format", GST_FORMAT_TIME, "is-live", FALSE, "block", FALSE, "max-bytes",
                 kQueueLimitBytes, nullptr);
    gst_caps_unref(sourceCaps);
    gst_bin_add_many(GST_BIN(pipeline), source, volume, convert, resample, sink, nullptr);
    if (!gst_element_link_many(source, volume, convert, resample, sink, nullptr)) {
        gst_object_unref(pipeline);
        pipeline = nullptr;
        return false;
    }
    return true;
}

bool KGstSpeech::speak(const KSpeechRequest& request)
{
    if (!pipeline)
        return false;
    cancel();
    gst_element_set_state(pipeline, GST_STATE_READY);
    // The end of an earlier request must not end this one.
    GstBus* bus = gst_element_get_bus(pipeline);
    gst_bus_set_flushing(bus, TRUE);
    gst_bus_set_flushing(bus, FALSE);
    gst_object_unref(bus);
    channel = std::make_shared<Channel>();
    channel->source = GST_APP_SRC(gst_object_ref(source));
    channel->rate = theEngine().sampleRate();
    ended = false;
    gst_element_set_state(pipeline, GST_STATE_PLAYING);
    theEngine().submit(channel, request);
    return true;
}

// After this no buffer of the request reaches the player: the worker
// pushes only under the channel's lock, and sees the mark.
void KGstSpeech::cancel()
{
    if (!channel)
        return;
    {
        std::lock_guard<std::mutex> guard(channel->lock);
        channel->cancelled = true;
    }
    channel.reset();
    if (pipeline)
        gst_element_set_state(pipeline, GST_STATE_READY);
}

int32_t KGstSpeech::positionMs() const
{
    gint64 at = 0;
    if (!pipeline || !channel || !gst_element_query_position(pipeline, GST_FORMAT_TIME, &at) || at < 0)
        return 0;
    return int32_t(at / GST_MSECOND);
}

void KGstSpeech::takeWords(std::vector<KSpeechRawWord>& out)
{
    if (!channel)
        return;
    std::lock_guard<std::mutex> guard(channel->lock);
    out.insert(out.end(), channel->words.begin(), channel->words.end());
    channel->words.clear();
}

void KGstSpeech::update()
{
    if (!pipeline || !channel)
        return;
    GstBus* bus = gst_element_get_bus(pipeline);
    while (GstMessage* message = gst_bus_pop_filtered(bus, GstMessageType(GST_MESSAGE_EOS | GST_MESSAGE_ERROR))) {
        ended = true;
        gst_message_unref(message);
    }
    gst_object_unref(bus);
}

KSpeechNative* KEspeakEngine::createSpeech() { return new KGstSpeech(); }

} // namespace

KSpeechEngine& knsSpeechEngine() { return theEngine(); }
