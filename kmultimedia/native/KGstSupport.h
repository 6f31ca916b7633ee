#pragma once

// GStreamer helpers shared by the media players of this folder.
#include <gst/gst.h>

// Initialises GStreamer once; false when it cannot start.
bool kgstEnsureInitialised();
bool kgstHasElement(const char* factoryName);
// The audio sink the settings ask for: with TALELOOM_AUDIO=null a fakesink
// that keeps time, so that nothing needs a sound card; otherwise null, and
// the player picks the system's own.
GstElement* kgstMakeAudioSink();
