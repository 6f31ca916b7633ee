#pragma once

#include "graphics/KBasicPoint.h"
#include "graphics/KGraphicsForward.h"

// A point in device pixels, 16 bits a coordinate; y grows downwards.
class KGraphicPoint : public KBasicPoint<KGraphicPoint, int16_t> {
    K_DECLARE_CLASS(KGraphicPoint)
public:
    using KBasicPoint::KBasicPoint;
};
