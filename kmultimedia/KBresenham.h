#pragma once

#include "kernel/KThing.h"
#include "kmultimedia/KMultimediaForward.h"

// Steps along a line from one integer point to another, one pixel a call:
// the standard Bresenham walk with the eight octants folded onto one by
// mirroring and swapping the axes.
//
// The first point delivered is the start; the call that delivers the end
// point reports that the walk is finished, and later calls repeat it.
class KBresenham : public KThing {
    K_DECLARE_CLASS(KBresenham)
public:
    // Coordinates are limited to this magnitude, so that no error term can
    // overflow; it is far beyond any scene.
    static constexpr int32_t kMaxCoordinate = 1 << 28;

    KBresenham() = default;
    KBresenham(const KBresenham& other) = default;
    KBresenham& operator=(const KBresenham& other) = default;

    KThing* deepCopy() const override;

    void set(int32_t x0, int32_t y0, int32_t x1, int32_t y1);
    // The coordinates are truncated toward zero.
    void set(const KAnimationPoint& from, const KAnimationPoint& to);
    // Delivers the current point and moves on; true once the point
    // delivered is the end point.
    bool next(int32_t& outX, int32_t& outY);
    bool next(KAnimationPoint& out);
    // The current point, unfolded.
    int32_t getX() const;
    int32_t getY() const;

private:
    void unfold(int32_t& outX, int32_t& outY) const;

    int32_t x = 0;
    int32_t y = 0;
    int32_t endX = 0;
    int32_t endY = 0;
    int32_t error = 0;
    int32_t deltaX = 0;
    int32_t deltaY = 0;
    int32_t step = 0;
    bool negativeX = false;
    bool negativeY = false;
    bool steep = false;
};
