#include "kmultimedia/KAnimationPoint.h"

#include "graphics/KGraphicPoint.h"
#include "kernel/KClass.h"

K_DEFINE_CLASS(KAnimationPoint, KThing)

KAnimationPoint::KAnimationPoint(const KGraphicPoint& p)
    : KCoordinatePair(float(p.x), float(p.y))
{
}

KAnimationPoint& KAnimationPoint::operator=(const KGraphicPoint& p)
{
    set(float(p.x), float(p.y));
    return *this;
}

KAnimationPoint& KAnimationPoint::operator+=(const KAnimationVector& v)
{
    x += v.x;
    y += v.y;
    return *this;
}
