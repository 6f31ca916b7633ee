// Decoding and encoding whole sound files through GStreamer pipelines that
// run without a clock: an app sink pulls decoded samples as fast as they
// come, an app source hands the encoder all the samples at once.

#include "kmultimedia/KAudioCodec.h"
#include "kmultimedia/native/KGstSupport.h"

#include <gst/app/gstappsink.h>
#include <gst/app/gstappsrc.h>

#include <cstring>

namespace {

constexpr int32_t kMp3BitRate = 96;

// Owns a pipeline, and stops it on the way out.
class PipelineGuard {
public:
    explicit PipelineGuard(GstElement* pipeline)
        : pipeline(pipeline)
    {
    }
    ~PipelineGuard()
    {
        if (!pipeline)
            return;
        gst_element_set_state(pipeline, GST_STATE_NULL);
        gst_object_unref(pipeline);
    }
    PipelineGuard(const PipelineGuard&) = delete;
    PipelineGuard& operator=(const PipelineGuard&) = delete;

    GstElement* get() const { return pipeline; }
    GstElement* child(const char* name) const { return gst_bin_get_by_name(GST_BIN(pipeline), name); }

private:
    GstElement* pipeline;
};

GstElement* parsePipeline(const std::string& description, std::string& reason)
{
    if (!kgstEnsureInitialised()) {
        reason = "the media framework cannot start";
        return nullptr;
    }
    GError* error = nullptr;
    GstElement* pipeline = gst_parse_launch(description.c_str(), &error);
    if (error) {
        reason = error->message;
        g_error_free(error);
        if (pipeline)
            gst_object_unref(pipeline);
        return nullptr;
    }
    return pipeline;
}

std::string rawCaps(int32_t rate, int32_t channels)
{
    return "audio/x-raw,format=S16LE,layout=interleaved,rate=" + std::to_string(rate)
           + ",channels=" + std::to_string(channels);
}

// Waits for the end of the stream or an error; the error's text as reason.
bool waitForEnd(GstElement* pipeline, std::string& reason)
{
    GstBus* bus = gst_element_get_bus(pipeline);
    GstMessage* message
        = gst_bus_timed_pop_filtered(bus, GST_CLOCK_TIME_NONE, GstMessageType(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
    bool ended = message && GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS;
    if (message && !ended) {
        GError* error = nullptr;
        gst_message_parse_error(message, &error, nullptr);
        reason = error ? error->message : "the media framework failed";
        if (error)
            g_error_free(error);
    }
    if (message)
        gst_message_unref(message);
    gst_object_unref(bus);
    return ended;
}

// The first error on the bus, if any, as text.
bool takeError(GstElement* pipeline, std::string& reason)
{
    GstBus* bus = gst_element_get_bus(pipeline);
    GstMessage* message = gst_bus_pop_filtered(bus, GST_MESSAGE_ERROR);
    gst_object_unref(bus);
    if (!message)
        return false;
    GError* error = nullptr;
    gst_message_parse_error(message, &error, nullptr);
    reason = error ? error->message : "the file cannot be decoded";
    if (error)
        g_error_free(error);
    gst_message_unref(message);
    return true;
}

void appendSample(GstSample* sample, std::vector<int16_t>& samples)
{
    GstBuffer* buffer = gst_sample_get_buffer(sample);
    GstMapInfo map;
    if (!buffer || !gst_buffer_map(buffer, &map, GST_MAP_READ))
        return;
    size_t count = map.size / sizeof(int16_t);
    size_t at = samples.size();
    samples.resize(at + count);
    std::memcpy(samples.data() + at, map.data, count * sizeof(int16_t));
    gst_buffer_unmap(buffer, &map);
}

} // namespace

bool knsDecodeAudioFile(const std::string& path, int32_t rate, int32_t channels, KAudioBuffer& out, std::string& reason)
{
    out = KAudioBuffer();
    out.rate = rate;
    out.channels = channels;
    if (rate <= 0 || channels <= 0 || channels > 8) {
        reason = "no such sample format";
        return false;
    }
    PipelineGuard pipeline(parsePipeline("filesrc name=source ! decodebin ! audioconvert ! audioresample ! "
                                             + rawCaps(rate, channels) + " ! appsink name=sink sync=false",
                                         reason));
    if (!pipeline.get())
        return false;
    GstElement* source = pipeline.child("source");
    g_object_set(source, "location", path.c_str(), nullptr);
    gst_object_unref(source);
    GstElement* sink = pipeline.child("sink");
    if (gst_element_set_state(pipeline.get(), GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE) {
        gst_object_unref(sink);
        if (!takeError(pipeline.get(), reason))
            reason = "the file cannot be decoded";
        return false;
    }
    while (GstSample* sample = gst_app_sink_pull_sample(GST_APP_SINK(sink))) {
        appendSample(sample, out.samples);
        gst_sample_unref(sample);
    }
    bool ended = gst_app_sink_is_eos(GST_APP_SINK(sink));
    gst_object_unref(sink);
    if (takeError(pipeline.get(), reason) || !ended) {
        if (reason.empty())
            reason = "the file cannot be decoded";
        out.samples.clear();
        return false;
    }
    // A whole number of frames.
    out.samples.resize(size_t(out.frames()) * size_t(channels));
    return true;
}

bool knsEncodeMp3File(const KAudioBuffer& in, const std::string& path, std::string& reason)
{
    if (!kgstEnsureInitialised() || !kgstHasElement("lamemp3enc")) {
        reason = "no MP3 encoder is installed";
        return false;
    }
    PipelineGuard pipeline(parsePipeline("appsrc name=source format=time ! audioconvert ! lamemp3enc target=bitrate "
                                         "cbr=true bitrate="
                                             + std::to_string(kMp3BitRate) + " ! filesink name=sink",
                                         reason));
    if (!pipeline.get())
        return false;
    GstElement* source = pipeline.child("source");
    GstElement* sink = pipeline.child("sink");
    g_object_set(sink, "location", path.c_str(), nullptr);
    gst_object_unref(sink);
    GstCaps* caps = gst_caps_from_string(rawCaps(in.rate, in.channels).c_str());
    gst_app_src_set_caps(GST_APP_SRC(source), caps);
    gst_caps_unref(caps);
    if (gst_element_set_state(pipeline.get(), GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE) {
        gst_object_unref(source);
        if (!takeError(pipeline.get(), reason))
            reason = "the file cannot be written";
        return false;
    }
    size_t bytes = in.samples.size() * sizeof(int16_t);
    if (bytes > 0) {
        GstBuffer* buffer = gst_buffer_new_allocate(nullptr, bytes, nullptr);
        gst_buffer_fill(buffer, 0, in.samples.data(), bytes);
        GST_BUFFER_PTS(buffer) = 0;
        GST_BUFFER_DURATION(buffer)
            = gst_util_uint64_scale(GstClockTime(in.frames()), GST_SECOND, GstClockTime(in.rate));
        gst_app_src_push_buffer(GST_APP_SRC(source), buffer);
    }
    gst_app_src_end_of_stream(GST_APP_SRC(source));
    gst_object_unref(source);
    return waitForEnd(pipeline.get(), reason);
}
