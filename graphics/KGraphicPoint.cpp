#include "graphics/KGraphicPoint.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(KGraphicPoint, KThing)

KThing* KGraphicPoint::deepCopy() const { return new KGraphicPoint(*this); }

KGraphicPoint& KGraphicPoint::operator+=(const KGraphicPoint& other)
{
    *this = *this + other;
    return *this;
}

KGraphicPoint& KGraphicPoint::operator-=(const KGraphicPoint& other)
{
    *this = *this - other;
    return *this;
}

void KGraphicPoint::offset(int16_t dx, int16_t dy)
{
    x = int16_t(x + dx);
    y = int16_t(y + dy);
}
