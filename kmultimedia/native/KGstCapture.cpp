// Sound capture on GStreamer: the input into an appsink that queues
// without limit, converted to the recording's format on the way. The event
// thread takes what is queued on its drain timer.

#include "kmultimedia/KSoundCaptureNative.h"
#include "kmultimedia/native/KGstSupport.h"

#include <gst/app/gstappsink.h>
#include <gst/gst.h>

#include <cstring>

namespace {

constexpr GstClockTime kFirstBufferLimit = GST_SECOND;

// True when an element of the bin, at any depth, is a test or fake source.
bool holdsStandIn(GstBin* bin)
{
    bool found = false;
    GstIterator* children = gst_bin_iterate_recurse(bin);
    GValue item = G_VALUE_INIT;
    while (gst_iterator_next(children, &item) == GST_ITERATOR_OK) {
        auto* child = GST_ELEMENT(g_value_get_object(&item));
        GstElementFactory* factory = gst_element_get_factory(child);
        const char* name = factory ? gst_plugin_feature_get_name(GST_PLUGIN_FEATURE(factory)) : "";
        if (std::strstr(name, "testsrc") || std::strstr(name, "fakesrc") || std::strstr(name, "fakeaudiosrc"))
            found = true;
        g_value_reset(&item);
    }
    g_value_unset(&item);
    gst_iterator_free(children);
    return found;
}

class KGstCapture final : public KSoundCaptureNative {
public:
    explicit KGstCapture(std::string description)
        : sourceDescription(std::move(description))
    {
    }
    ~KGstCapture() override { stop(); }

    bool start(const KWavFormat& format) override;
    void drain(std::vector<uint8_t>& out) override;
    bool hasFailed() const override { return failed; }
    void stop() override;
    const KCaptureFacts& facts() const override { return seen; }

private:
    GstElement* makeSource();
    bool build(const KWavFormat& format);
    void take(GstSample* sample, std::vector<uint8_t>& out);
    void readBus();

    std::string sourceDescription;
    GstElement* pipeline = nullptr;
    GstElement* source = nullptr;
    GstAppSink* sink = nullptr;
    std::vector<uint8_t> first;
    KCaptureFacts seen;
    bool failed = false;
};

GstElement* KGstCapture::makeSource()
{
    if (sourceDescription.empty() && kgstAudioIsNull()) {
        seen.simulated = true;
        GstElement* tone = gst_element_factory_make("audiotestsrc", nullptr);
        if (tone)
            g_object_set(tone, "is-live", TRUE, "freq", 440.0, "volume", 0.5, nullptr);
        return tone;
    }
    if (sourceDescription.empty())
        return gst_element_factory_make("autoaudiosrc", nullptr);
    GError* error = nullptr;
    GstElement* bin = gst_parse_bin_from_description(sourceDescription.c_str(), TRUE, &error);
    if (error)
        g_error_free(error);
    return bin;
}

bool KGstCapture::build(const KWavFormat& format)
{
    pipeline = gst_pipeline_new(nullptr);
    source = makeSource();
    GstElement* convert = gst_element_factory_make("audioconvert", nullptr);
    GstElement* resample = gst_element_factory_make("audioresample", nullptr);
    GstElement* appsink = gst_element_factory_make("appsink", nullptr);
    if (!pipeline || !source || !convert || !resample || !appsink) {
        for (GstElement* element : { pipeline, source, convert, resample, appsink }) {
            if (element)
                gst_object_unref(gst_object_ref_sink(element));
        }
        pipeline = nullptr;
        source = nullptr;
        return false;
    }
    gst_object_ref_sink(pipeline);
    std::string caps = std::string("audio/x-raw,layout=interleaved,format=")
                       + (format.bitsPerSample == 8 ? "U8" : "S16LE") + ",rate=" + std::to_string(format.sampleRate)
                       + ",channels=" + std::to_string(format.channels);
    GstCaps* sinkCaps = gst_caps_from_string(caps.c_str());
    // Nothing is dropped: what the event thread has not taken waits.
    g_object_set(appsink, "caps", sinkCaps, "sync", FALSE, "max-buffers", 0, "drop", FALSE, nullptr);
    gst_caps_unref(sinkCaps);
    sink = GST_APP_SINK(gst_object_ref(appsink));
    gst_bin_add_many(GST_BIN(pipeline), source, convert, resample, appsink, nullptr);
    return gst_element_link_many(source, convert, resample, appsink, nullptr);
}

bool KGstCapture::start(const KWavFormat& format)
{
    if (pipeline || !kgstEnsureInitialised())
        return false;
    if (!seen.simulated && sourceDescription.empty() && !kgstAudioIsNull())
        seen.onlyMonitors = kgstInputDeviceNames().empty();
    if (!build(format)) {
        seen.busError = true;
        stop();
        return false;
    }
    if (gst_element_set_state(pipeline, GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE)
        seen.busError = true;
    // The automatic source has chosen its device by now.
    if (!seen.simulated && GST_IS_BIN(source))
        seen.standInSource = holdsStandIn(GST_BIN(source));
    else if (!seen.simulated)
        seen.standInSource = holdsStandIn(GST_BIN(pipeline));
    if (!seen.busError) {
        GstSample* sample = gst_app_sink_try_pull_sample(sink, kFirstBufferLimit);
        seen.firstBufferInTime = sample != nullptr;
        if (sample)
            take(sample, first);
    }
    readBus();
    seen.busError = seen.busError || failed;
    if (kCaptureHasNoDevice(seen)) {
        stop();
        return false;
    }
    return true;
}

void KGstCapture::take(GstSample* sample, std::vector<uint8_t>& out)
{
    GstBuffer* buffer = gst_sample_get_buffer(sample);
    GstMapInfo map;
    if (buffer && gst_buffer_map(buffer, &map, GST_MAP_READ)) {
        out.insert(out.end(), map.data, map.data + map.size);
        gst_buffer_unmap(buffer, &map);
    }
    gst_sample_unref(sample);
}

void KGstCapture::drain(std::vector<uint8_t>& out)
{
    if (!first.empty()) {
        out.insert(out.end(), first.begin(), first.end());
        first.clear();
    }
    if (!sink)
        return;
    while (GstSample* sample = gst_app_sink_try_pull_sample(sink, 0))
        take(sample, out);
    readBus();
}

void KGstCapture::readBus()
{
    if (!pipeline)
        return;
    GstBus* bus = gst_element_get_bus(pipeline);
    while (GstMessage* message = gst_bus_pop_filtered(bus, GstMessageType(GST_MESSAGE_EOS | GST_MESSAGE_ERROR))) {
        failed = true;
        gst_message_unref(message);
    }
    gst_object_unref(bus);
}

void KGstCapture::stop()
{
    if (pipeline) {
        gst_element_set_state(pipeline, GST_STATE_NULL);
        gst_object_unref(pipeline);
        pipeline = nullptr;
    }
    source = nullptr;
    if (sink) {
        gst_object_unref(sink);
        sink = nullptr;
    }
}

} // namespace

KSoundCaptureNative* knsCreateSoundCapture(const std::string& sourceDescription)
{
    return new KGstCapture(sourceDescription);
}
