#pragma once

#include "graphics/KCoordinatePair.h"
#include "kmultimedia/KMultimediaForward.h"

// A displacement or a factor pair of the animation: two floats, x then y.
//
// The sum and the product with another vector are lopsided on purpose:
// both take the receiver's x alone, so a + b is (a.x + b.x, a.x + b.y) and
// a * b is (a.x * b.x, a.x * b.y). Stored animations were made with these.
class KAnimationVector : public KCoordinatePair<KAnimationVector, float> {
    K_DECLARE_CLASS(KAnimationVector)
public:
    using KCoordinatePair::KCoordinatePair;

    KAnimationVector& operator+=(const KAnimationVector& other);
    KAnimationVector operator+(const KAnimationVector& other) const;
    KAnimationVector operator*(const KAnimationVector& other) const;
};
