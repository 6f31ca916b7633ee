#pragma once

#include "kernel/KString.h"

// Whether a document of the size fits the screen. Empty when it does;
// otherwise the refusal the user is shown, in the user's language:
// "This document's resolution (W,H) exceeds the screen resolution (SW,SH);
// this document cannot be opened."
KString projectResolutionRefusal(int32_t width, int32_t height, int32_t screenWidth, int32_t screenHeight);
