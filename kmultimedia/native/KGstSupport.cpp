#include "kmultimedia/native/KGstSupport.h"

#include <cstdlib>
#include <cstring>

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

GstElement* kgstMakeAudioSink()
{
    const char* setting = std::getenv("TALELOOM_AUDIO");
    if (!setting || std::strcmp(setting, "null") != 0)
        return nullptr;
    GstElement* sink = gst_element_factory_make("fakesink", nullptr);
    if (sink)
        g_object_set(sink, "sync", TRUE, nullptr);
    return sink;
}
