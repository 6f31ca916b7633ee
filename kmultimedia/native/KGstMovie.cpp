// Movies on GStreamer: a playbin whose video sink is an appsink that hands
// over BGRx frames (cairo's RGB24 on a little-endian host). The pipeline
// decodes on its own threads; the event thread takes frames and reads the
// bus only when KMovie asks, from the media manager's idle pass.

#include "kmultimedia/KMovieNative.h"
#include "kmultimedia/native/KGstSupport.h"

#include <gst/app/gstappsink.h>
#include <gst/gst.h>
#include <gst/video/video.h>

#include <algorithm>

namespace {

// How long open() waits for the first frame of a file.
constexpr GstClockTime kPrerollLimit = 5 * GST_SECOND;

class KGstMovie final : public KMovieNative {
public:
    KGstMovie()
        : KMovieNative(PlayerEngine)
    {
    }
    ~KGstMovie() override { dispose(); }

    bool open(const char* path) override;
    void naturalSize(int32_t& width, int32_t& height) const override
    {
        width = frameWidth;
        height = frameHeight;
    }
    void start() override { setState(GST_STATE_PLAYING); }
    void stop() override { setState(GST_STATE_PAUSED); }
    void pause() override { setState(GST_STATE_PAUSED); }
    double duration() const override;
    void seek(double fraction) override;
    bool update() override;
    KMovieFrame currentFrame() const override { return frame; }
    bool isAtEnd() const override { return atEnd || failed; }

private:
    bool build(const char* path);
    bool waitForPreroll();
    bool takeSample(GstSample* sample);
    void readBus();
    void setState(GstState state);
    void releaseFrame();
    void dispose();

    GstElement* pipeline = nullptr;
    GstAppSink* sink = nullptr;
    GstBuffer* buffer = nullptr;
    GstVideoFrame mapped {};
    bool isMapped = false;
    KMovieFrame frame;
    int32_t frameWidth = 0;
    int32_t frameHeight = 0;
    bool atEnd = false;
    bool failed = false;
};

bool KGstMovie::build(const char* path)
{
    gchar* uri = gst_filename_to_uri(path, nullptr);
    if (!uri)
        return false;
    pipeline = gst_element_factory_make("playbin", nullptr);
    GstElement* appsink = gst_element_factory_make("appsink", nullptr);
    if (!pipeline || !appsink) {
        g_free(uri);
        if (appsink)
            gst_object_unref(appsink);
        return false;
    }
    gst_object_ref_sink(pipeline);
    GstCaps* caps = gst_caps_from_string("video/x-raw,format=BGRx");
    // A small queue that drops the oldest frame: the page shows the newest
    // one, and a slow pass never holds the decoder back.
    g_object_set(appsink, "caps", caps, "sync", TRUE, "max-buffers", 2, "drop", TRUE, "enable-last-sample", FALSE,
                 nullptr);
    gst_caps_unref(caps);
    sink = GST_APP_SINK(gst_object_ref(appsink));
    g_object_set(pipeline, "uri", uri, "video-sink", appsink, nullptr);
    g_free(uri);
    if (GstElement* audio = kgstMakeAudioSink())
        g_object_set(pipeline, "audio-sink", audio, nullptr);
    return true;
}

bool KGstMovie::open(const char* path)
{
    if (pipeline || !path || !g_file_test(path, G_FILE_TEST_IS_REGULAR))
        return false;
    if (!kgstEnsureInitialised() || !build(path) || !waitForPreroll()) {
        dispose();
        return false;
    }
    return true;
}

// The file is good when the pipeline reaches PAUSED in time and the sink
// holds a first frame, which becomes the poster.
bool KGstMovie::waitForPreroll()
{
    if (gst_element_set_state(pipeline, GST_STATE_PAUSED) == GST_STATE_CHANGE_FAILURE)
        return false;
    GstState state = GST_STATE_NULL;
    if (gst_element_get_state(pipeline, &state, nullptr, kPrerollLimit) != GST_STATE_CHANGE_SUCCESS)
        return false;
    readBus();
    if (failed)
        return false;
    GstSample* first = gst_app_sink_try_pull_preroll(sink, 0);
    if (!first)
        return false;
    return takeSample(first);
}

// The sink reuses its sample objects, so only the buffer is kept: holding
// the sample would keep the sink from refilling it.
bool KGstMovie::takeSample(GstSample* fresh)
{
    GstVideoInfo info;
    GstCaps* caps = gst_sample_get_caps(fresh);
    GstBuffer* freshBuffer = gst_sample_get_buffer(fresh);
    bool usable = caps && freshBuffer && gst_video_info_from_caps(&info, caps)
                  && GST_VIDEO_INFO_FORMAT(&info) == GST_VIDEO_FORMAT_BGRx;
    if (usable)
        gst_buffer_ref(freshBuffer);
    gst_sample_unref(fresh);
    if (!usable)
        return false;
    GstVideoFrame next;
    if (!gst_video_frame_map(&next, &info, freshBuffer, GST_MAP_READ)) {
        gst_buffer_unref(freshBuffer);
        return false;
    }
    int32_t stride = GST_VIDEO_FRAME_PLANE_STRIDE(&next, 0);
    int32_t width = GST_VIDEO_FRAME_WIDTH(&next);
    int32_t height = GST_VIDEO_FRAME_HEIGHT(&next);
    if (stride <= 0 || stride % 4 != 0 || width <= 0 || height <= 0 || stride / 4 < width) {
        gst_video_frame_unmap(&next);
        gst_buffer_unref(freshBuffer);
        return false;
    }
    releaseFrame();
    buffer = freshBuffer;
    mapped = next;
    isMapped = true;
    frame.pixels = static_cast<const uint32_t*>(GST_VIDEO_FRAME_PLANE_DATA(&mapped, 0));
    frame.stride = stride / 4;
    frame.width = width;
    frame.height = height;
    frameWidth = width;
    frameHeight = height;
    return true;
}

void KGstMovie::releaseFrame()
{
    if (isMapped)
        gst_video_frame_unmap(&mapped);
    isMapped = false;
    if (buffer)
        gst_buffer_unref(buffer);
    buffer = nullptr;
    frame = KMovieFrame();
}

// Takes every frame waiting in the sink; the newest stays current. Each is
// let go of at once, since the sink reuses what it hands out.
bool KGstMovie::update()
{
    if (!sink)
        return false;
    bool fresh = false;
    while (GstSample* next = gst_app_sink_try_pull_sample(sink, 0))
        fresh = takeSample(next) || fresh;
    readBus();
    if (gst_app_sink_is_eos(sink))
        atEnd = true;
    return fresh;
}

void KGstMovie::readBus()
{
    GstBus* bus = gst_element_get_bus(pipeline);
    if (!bus)
        return;
    while (GstMessage* message = gst_bus_pop_filtered(bus, GstMessageType(GST_MESSAGE_EOS | GST_MESSAGE_ERROR))) {
        if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS)
            atEnd = true;
        else
            failed = true;
        gst_message_unref(message);
    }
    gst_object_unref(bus);
}

void KGstMovie::setState(GstState state)
{
    if (pipeline)
        gst_element_set_state(pipeline, state);
}

double KGstMovie::duration() const
{
    gint64 length = 0;
    if (!pipeline || !gst_element_query_duration(pipeline, GST_FORMAT_TIME, &length) || length <= 0)
        return 0.0;
    return double(length) / double(GST_SECOND);
}

// A flushing seek clears the end of stream; the next frame arrives through
// the sink as usual.
void KGstMovie::seek(double fraction)
{
    if (!pipeline)
        return;
    gint64 length = 0;
    gint64 target = 0;
    if (fraction > 0.0 && gst_element_query_duration(pipeline, GST_FORMAT_TIME, &length) && length > 0)
        target = gint64(double(length) * std::clamp(fraction, 0.0, 1.0));
    if (gst_element_seek_simple(pipeline, GST_FORMAT_TIME, GstSeekFlags(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_KEY_UNIT),
                                target))
        atEnd = false;
}

void KGstMovie::dispose()
{
    releaseFrame();
    if (pipeline) {
        gst_element_set_state(pipeline, GST_STATE_NULL);
        gst_object_unref(pipeline);
        pipeline = nullptr;
    }
    if (sink) {
        gst_object_unref(sink);
        sink = nullptr;
    }
}

} // namespace

int32_t knsAvailableMovieEngines()
{
    if (!kgstEnsureInitialised() || !kgstHasElement("playbin") || !kgstHasElement("appsink"))
        return 0;
    return 1 << (KMovieNative::PlayerEngine - 1);
}

KMovieNative* knsCreateMovie(int32_t engineTag)
{
    if (engineTag != KMovieNative::PlayerEngine)
        return nullptr;
    return new KGstMovie();
}
