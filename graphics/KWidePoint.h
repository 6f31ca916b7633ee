#pragma once

#include "graphics/KBasicPoint.h"
#include "graphics/KGraphicsForward.h"

// A point in 32 bits, for scrolling areas and large documents.
class KWidePoint : public KBasicPoint<KWidePoint, int32_t> {
    K_DECLARE_CLASS(KWidePoint)
public:
    using KBasicPoint::KBasicPoint;
};
