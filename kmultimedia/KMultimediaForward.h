#pragma once

#include "graphics/KGraphicsForward.h"
#include "kernel/KForward.h"
#include "windowing/KWindowingForward.h"

// Forward declarations of the multimedia subsystem (animation and sprites,
// timed media) and its counted references.

class KAnimationPoint;
class KAnimationVector;
class KBresenham;
class KAnimationController;
class KAnimationObject;
class KAnimationSystem;

using KAnimationPointPtr = KPtr<KAnimationPoint>;
using KAnimationVectorPtr = KPtr<KAnimationVector>;
using KBresenhamPtr = KPtr<KBresenham>;
using KAnimationControllerPtr = KPtr<KAnimationController>;
using KAnimationObjectPtr = KPtr<KAnimationObject>;
using KAnimationSystemPtr = KPtr<KAnimationSystem>;
