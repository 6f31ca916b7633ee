#pragma once

#include "kernel/KForward.h"
#include "tape/TapeForward.h"

// Forward declarations of the project subsystem and its counted references.

class StylusProject;
class StylusProjectObserver;

using StylusProjectPtr = KPtr<StylusProject>;
