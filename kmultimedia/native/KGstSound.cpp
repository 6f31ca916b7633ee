// Sound files on GStreamer: one playbin per sound, audio only, with an
// audiopanorama as its filter for the balance and its own linear volume.
// The pipeline runs on its own threads; the event thread reads the bus only
// when KSound asks, from the media manager's idle pass.

#include "kmultimedia/KSoundNative.h"
#include "kmultimedia/KWavWriter.h"
#include "kmultimedia/native/KGstSupport.h"

#include <gst/app/gstappsink.h>
#include <gst/audio/audio.h>
#include <gst/gst.h>

#include <algorithm>

namespace {

// How long open() waits for the file to be ready to play.
constexpr GstClockTime kPrerollLimit = 5 * GST_SECOND;
// playbin's flags: audio, with its own volume element. No video is decoded
// even when the file has some.
constexpr guint kAudioOnlyFlags = 0x2 | 0x10;

class KGstSound final : public KSoundNative {
public:
    ~KGstSound() override { dispose(); }

    bool open(const char* path, const char* renderPath) override;
    void start() override { setState(GST_STATE_PLAYING); }
    void pause() override { setState(GST_STATE_PAUSED); }
    void seek(double seconds) override;
    double duration() const override;
    double position() const override;
    bool queryPosition(double& seconds) const override;
    void setVolume(double volume) override;
    void setBalance(double balance) override;
    void update() override
    {
        readBus();
        takeRendered();
    }
    bool isAtEnd() const override { return (atEnd && !renderSink) || renderDone || failed; }
    bool hasFailed() const override { return failed; }
    const std::string& failure() const override { return reason; }

private:
    bool build(const char* path, const char* renderPath);
    bool waitForPreroll();
    void readBus();
    void setState(GstState state);
    void fail(const std::string& why);
    void dispose();
    GstElement* makeRenderSink();
    void takeRendered();

    double volume = 1.0;
    double balance = 0.0;
    GstElement* pipeline = nullptr;
    GstAppSink* renderSink = nullptr;
    std::string renderTarget;
    KWavWriter renderFile;
    bool renderDone = false;
    GstElement* panorama = nullptr;
    bool atEnd = false;
    bool failed = false;
    std::string reason;
};

void KGstSound::fail(const std::string& why)
{
    if (!failed)
        reason = why;
    failed = true;
}

bool KGstSound::build(const char* path, const char* renderPath)
{
    gchar* uri = gst_filename_to_uri(path, nullptr);
    if (!uri) {
        fail("not a file name");
        return false;
    }
    pipeline = gst_element_factory_make("playbin", nullptr);
    panorama = gst_element_factory_make("audiopanorama", nullptr);
    if (renderPath)
        renderTarget = renderPath;
    GstElement* sink = renderPath ? makeRenderSink() : kgstMakeAudioSink();
    if (!pipeline || !panorama || (renderPath && !sink)) {
        g_free(uri);
        for (GstElement* element : { panorama, sink }) {
            if (element)
                gst_object_unref(gst_object_ref_sink(element));
        }
        panorama = nullptr;
        fail("the sound player is not installed");
        return false;
    }
    gst_object_ref_sink(pipeline);
    // The simple method: at -1 the right channel is silent and the left keeps
    // its level; at 0 both carry the sound at its own level.
    g_object_set(panorama, "method", 1, "panorama", gfloat(balance), nullptr);
    gst_object_ref(panorama);
    g_object_set(pipeline, "uri", uri, "flags", kAudioOnlyFlags, "audio-filter", panorama, "volume", volume, nullptr);
    if (sink)
        g_object_set(pipeline, "audio-sink", sink, nullptr);
    g_free(uri);
    return true;
}

bool KGstSound::open(const char* path, const char* renderPath)
{
    if (pipeline || !path)
        return false;
    if (!g_file_test(path, G_FILE_TEST_IS_REGULAR)) {
        fail("no such file");
        return false;
    }
    if (!kgstEnsureInitialised()) {
        fail("the sound player cannot start");
        return false;
    }
    if (!build(path, renderPath) || !waitForPreroll()) {
        dispose();
        return false;
    }
    return true;
}

// The file is good when the pipeline reaches PAUSED in time with a stream
// of sound.
bool KGstSound::waitForPreroll()
{
    GstStateChangeReturn result = gst_element_set_state(pipeline, GST_STATE_PAUSED);
    if (result != GST_STATE_CHANGE_FAILURE)
        result = gst_element_get_state(pipeline, nullptr, nullptr, kPrerollLimit);
    readBus();
    if (failed)
        return false;
    if (result == GST_STATE_CHANGE_ASYNC) {
        fail("the file did not open in time");
        return false;
    }
    if (result == GST_STATE_CHANGE_FAILURE) {
        fail("the file cannot be decoded");
        return false;
    }
    gint streams = 0;
    g_object_get(pipeline, "n-audio", &streams, nullptr);
    if (streams <= 0) {
        fail("the file holds no sound");
        return false;
    }
    return true;
}

// Rendering goes through an appsink drained into the WAV writer, so that
// the file is written the same way whatever the pipeline's states were.
GstElement* KGstSound::makeRenderSink()
{
    GError* error = nullptr;
    GstElement* bin = gst_parse_bin_from_description(
        "audioconvert ! audioresample ! audio/x-raw,format=S16LE,layout=interleaved ! appsink name=out sync=false",
        TRUE, &error);
    if (error)
        g_error_free(error);
    if (!bin)
        return nullptr;
    GstElement* out = gst_bin_get_by_name(GST_BIN(bin), "out");
    g_object_set(out, "max-buffers", 0, "drop", FALSE, nullptr);
    renderSink = GST_APP_SINK(out);
    return bin;
}

void KGstSound::takeRendered()
{
    if (!renderSink || renderDone)
        return;
    while (GstSample* sample = gst_app_sink_try_pull_sample(renderSink, 0)) {
        GstAudioInfo info;
        GstBuffer* buffer = gst_sample_get_buffer(sample);
        GstCaps* caps = gst_sample_get_caps(sample);
        if (!renderFile.isOpen() && caps && gst_audio_info_from_caps(&info, caps)) {
            KWavFormat format { int16_t(GST_AUDIO_INFO_CHANNELS(&info)), GST_AUDIO_INFO_RATE(&info), 16 };
            if (renderFile.open(renderTarget, format) != KWavWriter::Written)
                fail("the file cannot be written");
        }
        GstMapInfo map;
        if (renderFile.isOpen() && buffer && gst_buffer_map(buffer, &map, GST_MAP_READ)) {
            if (renderFile.write(map.data, map.size) != KWavWriter::Written)
                fail("the file cannot be written");
            gst_buffer_unmap(buffer, &map);
        }
        gst_sample_unref(sample);
    }
    if (gst_app_sink_is_eos(renderSink)) {
        if (!renderFile.isOpen())
            renderFile.open(renderTarget, KWavFormat { 2, 44100, 16 });
        renderFile.close();
        renderDone = true;
    }
}

void KGstSound::readBus()
{
    if (!pipeline)
        return;
    GstBus* bus = gst_element_get_bus(pipeline);
    if (!bus)
        return;
    while (GstMessage* message = gst_bus_pop_filtered(bus, GstMessageType(GST_MESSAGE_EOS | GST_MESSAGE_ERROR))) {
        if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS) {
            atEnd = true;
        } else {
            GError* error = nullptr;
            gst_message_parse_error(message, &error, nullptr);
            fail(error && error->message ? error->message : "the player failed");
            if (error)
                g_error_free(error);
        }
        gst_message_unref(message);
    }
    gst_object_unref(bus);
}

void KGstSound::setState(GstState state)
{
    if (pipeline)
        gst_element_set_state(pipeline, state);
}

double KGstSound::duration() const
{
    gint64 length = 0;
    if (!pipeline || !gst_element_query_duration(pipeline, GST_FORMAT_TIME, &length) || length <= 0)
        return 0.0;
    return double(length) / double(GST_SECOND);
}

double KGstSound::position() const
{
    gint64 at = 0;
    if (!pipeline || !gst_element_query_position(pipeline, GST_FORMAT_TIME, &at) || at < 0)
        return 0.0;
    return double(at) / double(GST_SECOND);
}

bool KGstSound::queryPosition(double& seconds) const
{
    gint64 at = 0;
    if (!pipeline || !gst_element_query_position(pipeline, GST_FORMAT_TIME, &at) || at < 0)
        return false;
    seconds = double(at) / double(GST_SECOND);
    return true;
}

void KGstSound::seek(double seconds)
{
    if (!pipeline)
        return;
    auto target = gint64(std::max(seconds, 0.0) * double(GST_SECOND));
    if (gst_element_seek_simple(pipeline, GST_FORMAT_TIME, GstSeekFlags(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_ACCURATE),
                                target))
        atEnd = false;
    renderDone = false;
}

// Both are kept and given to the pipeline when it is made: what prerolls
// must already have them, or a rendered file would begin without them.
void KGstSound::setVolume(double value)
{
    volume = std::clamp(value, 0.0, 1.0);
    if (pipeline)
        g_object_set(pipeline, "volume", volume, nullptr);
}

void KGstSound::setBalance(double value)
{
    balance = std::clamp(value, -1.0, 1.0);
    if (panorama)
        g_object_set(panorama, "panorama", gfloat(balance), nullptr);
}

void KGstSound::dispose()
{
    renderFile.close();
    if (renderSink) {
        gst_object_unref(renderSink);
        renderSink = nullptr;
    }
    if (pipeline) {
        gst_element_set_state(pipeline, GST_STATE_NULL);
        gst_object_unref(pipeline);
        pipeline = nullptr;
    }
    if (panorama) {
        gst_object_unref(panorama);
        panorama = nullptr;
    }
}

} // namespace

int32_t knsAvailableSoundEngines()
{
    if (!kgstEnsureInitialised() || !kgstHasElement("playbin") || !kgstHasElement("audiopanorama"))
        return 0;
    return 1;
}

KSoundNative* knsCreateSound() { return new KGstSound(); }

std::vector<std::string> knsSoundInputDevices() { return kgstInputDeviceNames(); }
