// Video files through GStreamer: two app sources, pictures and sound, into
// the encoders and a muxer, without a clock, so that encoding runs as fast
// as it can; and a decoder that seeks to a time for checking the result.

#include "kmultimedia/KVideoEncoder.h"
#include "kmultimedia/native/KGstSupport.h"

#include <gst/app/gstappsink.h>
#include <gst/app/gstappsrc.h>
#include <gst/video/video.h>

#include <cstring>

namespace {

std::string errorOf(GstMessage* message)
{
    GError* error = nullptr;
    gst_message_parse_error(message, &error, nullptr);
    std::string text = error ? error->message : "the media framework failed";
    if (error)
        g_error_free(error);
    return text;
}

bool hasElements(std::initializer_list<const char*> names, std::string& reason)
{
    for (const char* name : names) {
        if (!kgstHasElement(name)) {
            reason = std::string("the encoder \"") + name + "\" is not installed";
            return false;
        }
    }
    return true;
}

class KGstVideoEncoder final : public KVideoEncoder {
public:
    ~KGstVideoEncoder() override { release(); }

    bool open(const std::string& path, const Settings& settings, std::string& reason) override
    {
        if (!kgstEnsureInitialised()) {
            reason = "the media framework cannot start";
            return false;
        }
        this->settings = settings;
        bool webm = settings.container == Container::WebM;
        if (!hasElements(webm ? std::initializer_list<const char*> { "vp9enc", "opusenc", "webmmux" }
                              : std::initializer_list<const char*> { "x264enc", "avenc_aac", "mp4mux" },
                         reason))
            return false;
        std::string video
            = "appsrc name=video format=time block=true max-bytes=20000000 caps=video/x-raw,format=BGRx,width="
              + std::to_string(settings.width) + ",height=" + std::to_string(settings.height)
              + ",framerate=" + std::to_string(settings.framesPerSecond) + "/1 ! videoconvert ! ";
        video += webm ? "vp9enc deadline=1 cpu-used=8 threads=2 ! queue max-size-time=0 max-size-buffers=0 "
                        "max-size-bytes=0 ! mux. "
                      : "x264enc speed-preset=veryfast threads=2 ! video/x-h264,profile=main ! h264parse ! queue "
                        "max-size-time=0 max-size-buffers=0 max-size-bytes=0 ! mux. ";
        std::string audio = "appsrc name=audio format=time block=true max-bytes=20000000 "
                            "caps=audio/x-raw,format=S16LE,layout=interleaved,rate="
                            + std::to_string(kAudioRate) + ",channels=" + std::to_string(kAudioChannels)
                            + " ! audioconvert ! audioresample ! ";
        audio += webm ? "opusenc ! queue max-size-time=0 max-size-buffers=0 max-size-bytes=0 ! mux. "
                      : "avenc_aac ! aacparse ! queue max-size-time=0 max-size-buffers=0 max-size-bytes=0 ! mux. ";
        std::string mux
            = webm ? "webmmux name=mux ! filesink name=sink " : "mp4mux name=mux faststart=true ! filesink name=sink ";
        GError* error = nullptr;
        pipeline = gst_parse_launch((video + audio + mux).c_str(), &error);
        if (error) {
            reason = error->message;
            g_error_free(error);
            release();
            return false;
        }
        GstElement* sink = gst_bin_get_by_name(GST_BIN(pipeline), "sink");
        g_object_set(sink, "location", path.c_str(), nullptr);
        gst_object_unref(sink);
        videoSource = gst_bin_get_by_name(GST_BIN(pipeline), "video");
        audioSource = gst_bin_get_by_name(GST_BIN(pipeline), "audio");
        if (gst_element_set_state(pipeline, GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE) {
            reason = takeError();
            if (reason.empty())
                reason = path + ": cannot be written";
            release();
            return false;
        }
        return true;
    }

    bool addFrame(const uint32_t* pixels, int32_t stride, int64_t index) override
    {
        if (!videoSource)
            return false;
        size_t row = size_t(settings.width) * 4;
        GstBuffer* buffer = gst_buffer_new_allocate(nullptr, row * size_t(settings.height), nullptr);
        GstMapInfo map;
        gst_buffer_map(buffer, &map, GST_MAP_WRITE);
        for (int32_t y = 0; y < settings.height; ++y)
            std::memcpy(map.data + row * size_t(y), pixels + ptrdiff_t(stride) * y, row);
        gst_buffer_unmap(buffer, &map);
        GST_BUFFER_PTS(buffer)
            = gst_util_uint64_scale(GstClockTime(index), GST_SECOND, GstClockTime(settings.framesPerSecond));
        GST_BUFFER_DURATION(buffer) = gst_util_uint64_scale(1, GST_SECOND, GstClockTime(settings.framesPerSecond));
        return gst_app_src_push_buffer(GST_APP_SRC(videoSource), buffer) == GST_FLOW_OK;
    }

    bool addSound(const int16_t* samples, int64_t frames) override
    {
        if (!audioSource)
            return false;
        if (frames <= 0)
            return true;
        size_t bytes = size_t(frames) * kAudioChannels * sizeof(int16_t);
        GstBuffer* buffer = gst_buffer_new_allocate(nullptr, bytes, nullptr);
        gst_buffer_fill(buffer, 0, samples, bytes);
        GST_BUFFER_PTS(buffer) = gst_util_uint64_scale(GstClockTime(soundFrames), GST_SECOND, kAudioRate);
        GST_BUFFER_DURATION(buffer) = gst_util_uint64_scale(GstClockTime(frames), GST_SECOND, kAudioRate);
        soundFrames += frames;
        return gst_app_src_push_buffer(GST_APP_SRC(audioSource), buffer) == GST_FLOW_OK;
    }

    bool finish(std::string& reason) override
    {
        if (!pipeline) {
            reason = "nothing was written";
            return false;
        }
        gst_app_src_end_of_stream(GST_APP_SRC(videoSource));
        gst_app_src_end_of_stream(GST_APP_SRC(audioSource));
        GstBus* bus = gst_element_get_bus(pipeline);
        GstMessage* message
            = gst_bus_timed_pop_filtered(bus, GST_CLOCK_TIME_NONE, GstMessageType(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
        gst_object_unref(bus);
        bool ended = message && GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS;
        if (message && !ended)
            reason = errorOf(message);
        if (message)
            gst_message_unref(message);
        release();
        return ended;
    }

private:
    std::string takeError()
    {
        GstBus* bus = gst_element_get_bus(pipeline);
        GstMessage* message = gst_bus_pop_filtered(bus, GST_MESSAGE_ERROR);
        gst_object_unref(bus);
        if (!message)
            return {};
        std::string text = errorOf(message);
        gst_message_unref(message);
        return text;
    }
    void release()
    {
        if (videoSource)
            gst_object_unref(videoSource);
        if (audioSource)
            gst_object_unref(audioSource);
        videoSource = audioSource = nullptr;
        if (pipeline) {
            gst_element_set_state(pipeline, GST_STATE_NULL);
            gst_object_unref(pipeline);
            pipeline = nullptr;
        }
    }

    Settings settings;
    GstElement* pipeline = nullptr;
    GstElement* videoSource = nullptr;
    GstElement* audioSource = nullptr;
    int64_t soundFrames = 0;
};

} // namespace

std::unique_ptr<KVideoEncoder> knsCreateVideoEncoder() { return std::make_unique<KGstVideoEncoder>(); }

bool knsReadVideoFrame(const std::string& path, int64_t timeMs, KVideoFrame& frame, std::string& reason)
{
    frame = KVideoFrame();
    if (!kgstEnsureInitialised()) {
        reason = "the media framework cannot start";
        return false;
    }
    GError* error = nullptr;
    GstElement* pipeline
        = gst_parse_launch("filesrc name=source ! decodebin ! videoconvert ! video/x-raw,format=BGRx ! "
                           "appsink name=sink sync=false",
                           &error);
    if (error) {
        reason = error->message;
        g_error_free(error);
        if (pipeline)
            gst_object_unref(pipeline);
        return false;
    }
    GstElement* source = gst_bin_get_by_name(GST_BIN(pipeline), "source");
    g_object_set(source, "location", path.c_str(), nullptr);
    gst_object_unref(source);
    GstElement* sink = gst_bin_get_by_name(GST_BIN(pipeline), "sink");
    bool done = false;
    gst_element_set_state(pipeline, GST_STATE_PAUSED);
    if (gst_element_get_state(pipeline, nullptr, nullptr, 10 * GST_SECOND) != GST_STATE_CHANGE_FAILURE) {
        gint64 duration = 0;
        if (gst_element_query_duration(pipeline, GST_FORMAT_TIME, &duration))
            frame.durationMs = duration / GST_MSECOND;
        gst_element_seek_simple(pipeline, GST_FORMAT_TIME, GstSeekFlags(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_ACCURATE),
                                timeMs * GST_MSECOND);
        gst_element_get_state(pipeline, nullptr, nullptr, 10 * GST_SECOND);
        if (GstSample* sample = gst_app_sink_pull_preroll(GST_APP_SINK(sink))) {
            GstVideoInfo info;
            GstBuffer* buffer = gst_sample_get_buffer(sample);
            GstMapInfo map;
            if (gst_video_info_from_caps(&info, gst_sample_get_caps(sample)) && buffer
                && gst_buffer_map(buffer, &map, GST_MAP_READ)) {
                frame.width = GST_VIDEO_INFO_WIDTH(&info);
                frame.height = GST_VIDEO_INFO_HEIGHT(&info);
                int stride = GST_VIDEO_INFO_PLANE_STRIDE(&info, 0);
                frame.pixels.resize(size_t(frame.width) * size_t(frame.height));
                for (int32_t y = 0; y < frame.height; ++y) {
                    const auto* row = reinterpret_cast<const uint32_t*>(map.data + size_t(stride) * size_t(y));
                    for (int32_t x = 0; x < frame.width; ++x)
                        frame.pixels[size_t(y) * size_t(frame.width) + size_t(x)] = row[x] & 0x00FFFFFF;
                }
                gst_buffer_unmap(buffer, &map);
                done = true;
            }
            gst_sample_unref(sample);
        }
    }
    if (!done)
        reason = path + ": cannot be read as a video";
    gst_object_unref(sink);
    gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_object_unref(pipeline);
    return done;
}
