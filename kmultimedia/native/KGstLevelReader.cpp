// The loudness of a sound file through GStreamer's level element: a playbin
// with no audible output decodes the file as fast as it can, the level
// element in its audio path posts the RMS of each interval on the bus, and
// the reader collects them until the end of the stream.

#include "kmultimedia/KSoundLevelReader.h"
#include "kmultimedia/native/KGstSupport.h"

#include <gst/gst.h>

#include <algorithm>
#include <cmath>

namespace {

// playbin's flags: audio only, no video decoded even when the file has some.
constexpr guint kAudioOnlyFlags = 0x2;
// A file that takes longer than this to decode is given up: a reading of a
// story page lasts minutes, and decoding runs far faster than real time.
constexpr GstClockTime kReadLimit = 120 * GST_SECOND;
constexpr GstClockTime kPollInterval = 100 * GST_MSECOND;

// The loudest channel's value of a field of the level message.
bool loudestOf(const GstStructure* structure, const char* field, double& loudest)
{
    const GValue* list = gst_structure_get_value(structure, field);
    if (!list)
        return false;
    bool found = false;
    loudest = -1e9;
    auto take = [&](const GValue* value) {
        if (value && G_VALUE_HOLDS_DOUBLE(value)) {
            loudest = std::max(loudest, g_value_get_double(value));
            found = true;
        }
    };
    if (GST_VALUE_HOLDS_ARRAY(list) || GST_VALUE_HOLDS_LIST(list)) {
        guint count = GST_VALUE_HOLDS_ARRAY(list) ? gst_value_array_get_size(list) : gst_value_list_get_size(list);
        for (guint i = 0; i < count; ++i)
            take(GST_VALUE_HOLDS_ARRAY(list) ? gst_value_array_get_value(list, i) : gst_value_list_get_value(list, i));
        return found;
    }
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    bool valueArray = G_VALUE_HOLDS(list, g_value_array_get_type());
    G_GNUC_END_IGNORE_DEPRECATIONS
    if (valueArray) {
        G_GNUC_BEGIN_IGNORE_DEPRECATIONS
        auto* array = static_cast<GValueArray*>(g_value_get_boxed(list));
        for (guint i = 0; array && i < array->n_values; ++i)
            take(g_value_array_get_nth(array, i));
        G_GNUC_END_IGNORE_DEPRECATIONS
    }
    return found;
}

class KGstLevelReader final : public KSoundLevelReader {
public:
    bool read(const std::string& path, int32_t intervalMs, KSoundLevels& out) override;

private:
    static GstElement* build(const std::string& path, int32_t intervalMs);
    static void takeLevel(const GstStructure* structure, int32_t intervalMs, KSoundLevels& out);
};

GstElement* KGstLevelReader::build(const std::string& path, int32_t intervalMs)
{
    gchar* uri = gst_filename_to_uri(path.c_str(), nullptr);
    if (!uri)
        return nullptr;
    GstElement* pipeline = gst_element_factory_make("playbin", nullptr);
    GstElement* level = gst_element_factory_make("level", nullptr);
    GstElement* sink = gst_element_factory_make("fakesink", nullptr);
    if (!pipeline || !level || !sink) {
        for (GstElement* element : { pipeline, level, sink }) {
            if (element)
                gst_object_unref(gst_object_ref_sink(element));
        }
        g_free(uri);
        return nullptr;
    }
    g_object_set(level, "interval", guint64(intervalMs) * GST_MSECOND, "post-messages", TRUE, nullptr);
    g_object_set(sink, "sync", FALSE, nullptr);
    g_object_set(pipeline, "uri", uri, "flags", kAudioOnlyFlags, "audio-filter", level, "audio-sink", sink, nullptr);
    g_free(uri);
    return GST_ELEMENT(gst_object_ref_sink(pipeline));
}

void KGstLevelReader::takeLevel(const GstStructure* structure, int32_t intervalMs, KSoundLevels& out)
{
    GstClockTime start = GST_CLOCK_TIME_NONE;
    double rms = 0.0;
    if (!gst_structure_get_clock_time(structure, "stream-time", &start) || !GST_CLOCK_TIME_IS_VALID(start)
        || !loudestOf(structure, "rms", rms))
        return;
    auto index = size_t(start / (guint64(intervalMs) * GST_MSECOND));
    // A stream longer than the limit of reading is not one to place words
    // in; stop growing rather than allocate for a damaged time stamp.
    if (index > size_t(kReadLimit / GST_MSECOND))
        return;
    if (out.decibels.size() <= index)
        out.decibels.resize(index + 1, KSoundLevels::kSilence);
    float value = std::isfinite(rms) ? float(rms) : KSoundLevels::kSilence;
    out.decibels[index] = std::clamp(value, KSoundLevels::kSilence, 0.0f);
    GstClockTime duration = 0;
    if (gst_structure_get_clock_time(structure, "duration", &duration) && GST_CLOCK_TIME_IS_VALID(duration))
        out.durationMs = std::max(out.durationMs, int32_t((start + duration) / GST_MSECOND));
}

bool KGstLevelReader::read(const std::string& path, int32_t intervalMs, KSoundLevels& out)
{
    out = KSoundLevels();
    out.intervalMs = std::max(intervalMs, 1);
    if (!kgstEnsureInitialised() || !kgstHasElement("level"))
        return false;
    GstElement* pipeline = build(path, out.intervalMs);
    if (!pipeline)
        return false;
    bool ended = false;
    bool failed = gst_element_set_state(pipeline, GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE;
    GstBus* bus = gst_element_get_bus(pipeline);
    gint64 deadline = g_get_monotonic_time() + gint64(kReadLimit / GST_USECOND);
    auto wanted = GstMessageType(GST_MESSAGE_ELEMENT | GST_MESSAGE_EOS | GST_MESSAGE_ERROR);
    while (!failed && !ended && g_get_monotonic_time() < deadline) {
        GstMessage* message = gst_bus_timed_pop_filtered(bus, kPollInterval, wanted);
        if (!message)
            continue;
        if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR)
            failed = true;
        else if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS)
            ended = true;
        else if (const GstStructure* structure = gst_message_get_structure(message);
                 structure && gst_structure_has_name(structure, "level"))
            takeLevel(structure, out.intervalMs, out);
        gst_message_unref(message);
    }
    gint64 length = 0;
    if (ended && gst_element_query_duration(pipeline, GST_FORMAT_TIME, &length) && length > 0)
        out.durationMs = std::max(out.durationMs, int32_t(length / GST_MSECOND));
    gst_object_unref(bus);
    gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_object_unref(pipeline);
    if (!ended || out.decibels.empty()) {
        out = KSoundLevels();
        return false;
    }
    if (out.durationMs <= 0)
        out.durationMs = int32_t(out.decibels.size()) * out.intervalMs;
    return true;
}

} // namespace

KSoundLevelReader* knsCreateSoundLevelReader() { return new KGstLevelReader(); }
