#include "kmultimedia/KBresenham.h"

#include "kernel/KClass.h"
#include "kmultimedia/KAnimationPoint.h"

#include <algorithm>
#include <cmath>
#include <utility>

K_DEFINE_CLASS(KBresenham, KThing)

namespace {

int32_t clampCoordinate(int32_t value)
{
    return std::clamp(value, -KBresenham::kMaxCoordinate, KBresenham::kMaxCoordinate);
}

// Truncation toward zero; not a number counts as 0.
int32_t truncated(float value)
{
    if (std::isnan(value))
        return 0;
    double limit = double(KBresenham::kMaxCoordinate);
    return int32_t(std::clamp(double(value), -limit, limit));
}

} // namespace

KThing* KBresenham::deepCopy() const { return new KBresenham(*this); }

void KBresenham::set(int32_t x0, int32_t y0, int32_t x1, int32_t y1)
{
    x = clampCoordinate(x0);
    y = clampCoordinate(y0);
    endX = clampCoordinate(x1);
    endY = clampCoordinate(y1);
    step = 1;
    negativeX = endX < x;
    negativeY = endY < y;
    if (negativeX) {
        x = -x;
        endX = -endX;
    }
    if (negativeY) {
        y = -y;
        endY = -endY;
    }
    deltaX = endX - x;
    deltaY = endY - y;
    steep = deltaX < deltaY;
    if (steep) {
        std::swap(x, y);
        std::swap(endX, endY);
        std::swap(deltaX, deltaY);
    }
    error = 2 * deltaY - deltaX;
}

void KBresenham::set(const KAnimationPoint& from, const KAnimationPoint& to)
{
    set(truncated(from.x), truncated(from.y), truncated(to.x), truncated(to.y));
}

void KBresenham::unfold(int32_t& outX, int32_t& outY) const
{
    outX = x;
    outY = y;
    if (steep)
        std::swap(outX, outY);
    if (negativeX)
        outX = -outX;
    if (negativeY)
        outY = -outY;
}

bool KBresenham::next(int32_t& outX, int32_t& outY)
{
    bool finished = step > deltaX;
    unfold(outX, outY);
    if (finished)
        return true;
    if (error < 1) {
        error += 2 * deltaY;
    } else {
        ++y;
        error += 2 * (deltaY - deltaX);
    }
    ++x;
    ++step;
    return false;
}

bool KBresenham::next(KAnimationPoint& out)
{
    int32_t px = 0, py = 0;
    bool finished = next(px, py);
    out.set(float(px), float(py));
    return finished;
}

int32_t KBresenham::getX() const
{
    int32_t px = 0, py = 0;
    unfold(px, py);
    return px;
}

int32_t KBresenham::getY() const
{
    int32_t px = 0, py = 0;
    unfold(px, py);
    return py;
}
