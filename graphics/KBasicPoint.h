#pragma once

#include "graphics/KCoordinatePair.h"

#include <cstdint>

// A point of integer coordinates of type `C` (y grows downwards) with the
// arithmetic of offsets. The arithmetic wraps in the width of `C`, as the
// stored coordinates do.
template<class Derived, class C>
class KBasicPoint : public KCoordinatePair<Derived, C> {
public:
    KBasicPoint() = default;
    KBasicPoint(C x, C y)
        : KCoordinatePair<Derived, C>(x, y)
    {
    }

    Derived operator+(const Derived& other) const { return { wrap(this->x, other.x), wrap(this->y, other.y) }; }
    Derived operator-(const Derived& other) const
    {
        return { wrap(this->x, -int64_t(other.x)), wrap(this->y, -int64_t(other.y)) };
    }
    Derived operator-() const { return { wrap(0, -int64_t(this->x)), wrap(0, -int64_t(this->y)) }; }
    Derived& operator+=(const Derived& other) { return this->self() = *this + other; }
    Derived& operator-=(const Derived& other) { return this->self() = *this - other; }
    void offset(C dx, C dy)
    {
        this->x = wrap(this->x, dx);
        this->y = wrap(this->y, dy);
    }

private:
    // Narrowing to a signed type keeps the low bits.
    static C wrap(int64_t a, int64_t b) { return C(a + b); }
};
