#pragma once

#include "app/AppForward.h"
#include "kernel/KString.h"
#include "tape/TapeForward.h"

#include <string>

// The small story that comes with the program: a night sky with a moon
// and a meadow, a walker who crosses the page, a page transition, and a
// house on the second page. It shows strokes, a transition and an actor,
// and is what `make run` opens.
namespace SampleStory {

constexpr int16_t kPageWidth = 640;
constexpr int16_t kPageHeight = 480;
constexpr const char* kProjectName = "Sample";
constexpr const char* kActorName = "Walker";
constexpr const char* kMovementName = "Walk";

// The actor, with one movement of two frames.
ActorPtr makeWalker();
// The story's tape, with the position at its end. Its actors are not in it:
// a story names them and finds them in the project's "Actors" folder.
TapePtr makeTape();

// Writes the project folder `folder`/Sample: Sample.TPD, "Media" and
// "Actors"/Walker.ACT. False with a reason on any failure.
bool write(const std::string& folder, std::string& reason);

} // namespace SampleStory
