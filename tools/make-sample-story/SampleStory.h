#pragma once

#include "app/AppForward.h"
#include "kernel/KString.h"
#include "tape/TapeForward.h"

#include <string>

// The small story that comes with the program: a night sky with a moon
// and a meadow, a walker who crosses the page, a page transition, a house
// on the second page, and a last page whose text is read aloud with its
// words lit, followed by a chime, a pause and a wait for a click. It shows
// strokes, transitions, an actor, a text, a sound, a pause and a wait, and
// is what `make run` opens.
namespace SampleStory {

constexpr int16_t kPageWidth = 640;
constexpr int16_t kPageHeight = 480;
constexpr const char* kProjectName = "Sample";
constexpr const char* kActorName = "Walker";
constexpr const char* kMovementName = "Walk";
constexpr const char* kChimeName = "chime.wav";
constexpr const char* kClosingText = "The walker is home at last.\rGood night, little house!";

// The actor, with one movement of two frames.
ActorPtr makeWalker();
// The story's tape, with the position at its end. Its actors are not in it:
// a story names them and finds them in the project's "Actors" folder.
TapePtr makeTape();

// Writes the project folder `folder`/Sample: Sample.TPD, "Media"/chime.wav
// and "Actors"/Walker.ACT. False with a reason on any failure.
bool write(const std::string& folder, std::string& reason);

} // namespace SampleStory
