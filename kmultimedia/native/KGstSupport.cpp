#include "kmultimedia/native/KGstSupport.h"

#include <cstdlib>
#include <cstring>
#include <mutex>

bool kgstEnsureInitialised()
{
    if (gst_is_initialized())
        return true;
    GError* error = nullptr;
    bool ok = gst_init_check(nullptr, nullptr, &error);
    if (error)
        g_error_free(error);
    return ok;
}

bool kgstHasElement(const char* factoryName)
{
    GstElementFactory* factory = gst_element_factory_find(factoryName);
    if (!factory)
        return false;
    gst_object_unref(factory);
    return true;
}

bool kgstAudioIsNull()
{
    const char* setting = std::getenv("TALELOOM_AUDIO");
    return setting && std::strcmp(setting, "null") == 0;
}

namespace {

// True when the element a bin picked at READY is one of GStreamer's
// stand-ins rather than a device.
bool pickedAStandIn(GstElement* automatic)
{
    bool standIn = false;
    GstIterator* children = gst_bin_iterate_elements(GST_BIN(automatic));
    GValue item = G_VALUE_INIT;
    while (gst_iterator_next(children, &item) == GST_ITERATOR_OK) {
        auto* child = GST_ELEMENT(g_value_get_object(&item));
        GstElementFactory* factory = gst_element_get_factory(child);
        const char* name = factory ? gst_plugin_feature_get_name(GST_PLUGIN_FEATURE(factory)) : "";
        if (std::strstr(name, "fake") || std::strstr(name, "test"))
            standIn = true;
        g_value_reset(&item);
    }
    g_value_unset(&item);
    gst_iterator_free(children);
    return standIn;
}

// Whether the system's automatic output opens on a real device. Asked once:
// the answer does not change while the program runs often enough to pay a
// connection to the sound server for every sound.
bool hasOutputDevice()
{
    static std::once_flag once;
    static bool present = false;
    std::call_once(once, [] {
        GstElement* automatic = gst_element_factory_make("autoaudiosink", nullptr);
        if (!automatic)
            return;
        gst_object_ref_sink(automatic);
        if (gst_element_set_state(automatic, GST_STATE_READY) != GST_STATE_CHANGE_FAILURE)
            present = !pickedAStandIn(automatic);
        gst_element_set_state(automatic, GST_STATE_NULL);
        gst_object_unref(automatic);
    });
    return present;
}

} // namespace

GstElement* kgstMakeAudioSink()
{
    if (!kgstAudioIsNull() && hasOutputDevice())
        return nullptr;
    GstElement* sink = gst_element_factory_make("fakesink", nullptr);
    if (sink)
        g_object_set(sink, "sync", TRUE, nullptr);
    return sink;
}

GstElement* kgstMakeWavFileSink(const char* path)
{
    GError* error = nullptr;
    GstElement* bin = gst_parse_bin_from_description(
        "audioconvert ! audioresample ! audio/x-raw,format=S16LE ! wavenc ! filesink name=file sync=false", TRUE,
        &error);
    if (error)
        g_error_free(error);
    if (!bin)
        return nullptr;
    GstElement* file = gst_bin_get_by_name(GST_BIN(bin), "file");
    g_object_set(file, "location", path, nullptr);
    gst_object_unref(file);
    return bin;
}

std::vector<std::string> kgstInputDeviceNames()
{
    std::vector<std::string> names;
    if (!kgstEnsureInitialised())
        return names;
    GstDeviceMonitor* monitor = gst_device_monitor_new();
    gst_device_monitor_add_filter(monitor, "Audio/Source", nullptr);
    GList* devices = gst_device_monitor_get_devices(monitor);
    for (GList* at = devices; at; at = at->next) {
        auto* device = GST_DEVICE(at->data);
        GstStructure* properties = gst_device_get_properties(device);
        const char* kind = properties ? gst_structure_get_string(properties, "device.class") : nullptr;
        bool isMonitor = kind && std::strcmp(kind, "monitor") == 0;
        if (properties)
            gst_structure_free(properties);
        gchar* name = gst_device_get_display_name(device);
        if (!isMonitor && name)
            names.emplace_back(name);
        g_free(name);
    }
    g_list_free_full(devices, gst_object_unref);
    gst_object_unref(monitor);
    return names;
}
