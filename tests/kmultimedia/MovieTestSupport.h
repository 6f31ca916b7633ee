#pragma once

#include <gst/gst.h>

#include <glib.h>
#include <glib/gstdio.h>
#include <string>

// Writes a small movie of the moving-ball test pattern into a fresh
// temporary folder: H.264 in MP4. Returns the file's path, or an empty
// string with the reason in `error`. Gives up after a time limit.
inline std::string makeTestMovie(int width, int height, int frames, std::string& error, const char* name = "ball.mp4")
{
    if (!gst_is_initialized())
        gst_init(nullptr, nullptr);
    gchar* folder = g_dir_make_tmp("taleloom-movie-XXXXXX", nullptr);
    if (!folder) {
        error = "no temporary folder";
        return {};
    }
    std::string path = std::string(folder) + "/" + name;
    g_free(folder);
    std::string description
        = "videotestsrc num-buffers=" + std::to_string(frames) + " pattern=ball ! video/x-raw,format=I420,width="
          + std::to_string(width) + ",height=" + std::to_string(height)
          + ",framerate=25/1 ! x264enc speed-preset=ultrafast ! mp4mux ! filesink location=\"" + path + "\"";
    GError* parseError = nullptr;
    GstElement* pipeline = gst_parse_launch(description.c_str(), &parseError);
    if (!pipeline) {
        error = parseError ? parseError->message : "pipeline";
        if (parseError)
            g_error_free(parseError);
        return {};
    }
    if (parseError)
        g_error_free(parseError);
    gst_element_set_state(pipeline, GST_STATE_PLAYING);
    GstBus* bus = gst_element_get_bus(pipeline);
    GstMessage* message
        = gst_bus_timed_pop_filtered(bus, 30 * GST_SECOND, GstMessageType(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
    if (!message)
        error = "the encoder did not finish in time";
    else if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR)
        error = "the encoder failed";
    if (message)
        gst_message_unref(message);
    gst_object_unref(bus);
    gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_object_unref(pipeline);
    return error.empty() ? path : std::string();
}

// Removes the movie and its folder.
inline void removeTestMovie(const std::string& path)
{
    if (path.empty())
        return;
    g_remove(path.c_str());
    gchar* folder = g_path_get_dirname(path.c_str());
    g_rmdir(folder);
    g_free(folder);
}
