#pragma once

#include "graphics/KBasicSize.h"
#include "graphics/KGraphicsForward.h"

// A width and a height in device pixels, 16 bits each.
class KGraphicSize : public KBasicSize<KGraphicSize, int16_t> {
    K_DECLARE_CLASS(KGraphicSize)
public:
    using KBasicSize::KBasicSize;
};
