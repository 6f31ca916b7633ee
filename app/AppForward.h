#pragma once

#include "kernel/KForward.h"
#include "tape/TapeForward.h"

// Forward declarations of the program's own classes and their counted
// references.

class Actor;
class ActorSequence;
class ActorAction;
class ActorMotion;
class SceneTapePage;

using ActorPtr = KPtr<Actor>;
using ActorSequencePtr = KPtr<ActorSequence>;
using ActorActionPtr = KPtr<ActorAction>;
using ActorMotionPtr = KPtr<ActorMotion>;
using SceneTapePagePtr = KPtr<SceneTapePage>;
