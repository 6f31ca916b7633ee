#include "kmultimedia/KAnimationVector.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(KAnimationVector, KThing)

KAnimationVector& KAnimationVector::operator+=(const KAnimationVector& other)
{
    x += other.x;
    y += other.y;
    return *this;
}

KAnimationVector KAnimationVector::operator+(const KAnimationVector& other) const
{
    return { x + other.x, x + other.y };
}

KAnimationVector KAnimationVector::operator*(const KAnimationVector& other) const
{
    return { x * other.x, x * other.y };
}
