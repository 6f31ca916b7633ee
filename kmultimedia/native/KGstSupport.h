#pragma once

// GStreamer helpers shared by the media players of this folder.
#include <gst/gst.h>

#include <string>
#include <vector>

// Initialises GStreamer once; false when it cannot start.
bool kgstEnsureInitialised();
bool kgstHasElement(const char* factoryName);
// True when TALELOOM_AUDIO=null asks for silent sinks and test sources, so
// that nothing needs a sound card.
bool kgstAudioIsNull();
// The audio sink the settings ask for: a fakesink that keeps time with
// TALELOOM_AUDIO=null, or when the system has no usable output device, so
// that stories keep their timing; otherwise null, and the player picks the
// system's own.
GstElement* kgstMakeAudioSink();
// A sink that writes what it gets as a 16-bit WAV file at the path, as fast
// as it comes. Null when it cannot be made.
GstElement* kgstMakeWavFileSink(const char* path);
// The names of the real sound inputs: sources that are not monitors of an
// output.
std::vector<std::string> kgstInputDeviceNames();
