#pragma once

#include "graphics/KCoordinatePair.h"
#include "kmultimedia/KAnimationVector.h"
#include "kmultimedia/KMultimediaForward.h"

// A place in the scene in floating-point pixels: two floats, x then y.
class KAnimationPoint : public KCoordinatePair<KAnimationPoint, float> {
    K_DECLARE_CLASS(KAnimationPoint)
public:
    using KCoordinatePair::KCoordinatePair;
    // Widens the 16-bit coordinates.
    explicit KAnimationPoint(const KGraphicPoint& p);
    KAnimationPoint& operator=(const KGraphicPoint& p);

    // Moves the point by the vector.
    KAnimationPoint& operator+=(const KAnimationVector& v);
};
