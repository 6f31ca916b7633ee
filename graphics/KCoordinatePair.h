#pragma once

#include "graphics/KGraphicsStreams.h"
#include "kernel/KThing.h"

#include <cstdint>

// What a value of two coordinates, x then y, is: a point of the page, a
// place or a displacement of the animation. `Derived` is the registered
// class; `C` the coordinate type, which also chooses the stored form (16 or
// 32 bits, or a float): one section holding x and y.
template<class Derived, class C>
class KCoordinatePair : public KThing {
public:
    using Coordinate = C;

    KCoordinatePair() = default;
    KCoordinatePair(C x, C y)
        : x(x)
        , y(y)
    {
    }
    KCoordinatePair(const KCoordinatePair& other)
        : KThing(other)
        , x(other.x)
        , y(other.y)
    {
    }
    KCoordinatePair& operator=(const KCoordinatePair& other)
    {
        x = other.x;
        y = other.y;
        return *this;
    }

    KThing* deepCopy() const override { return new Derived(self()); }

    void readFromFile(KFile& file) override { readRecord(file); }
    void writeToFile(KFile& file, int32_t) override { KGraphicsStreams::writePair(file, Derived::classRecord, x, y); }
    // Reads the record; false, with the members as they were, when it is
    // damaged or of another class.
    bool readRecord(KFile& file) { return KGraphicsStreams::readPair(file, Derived::classRecord, x, y); }

    C getX() const { return x; }
    C getY() const { return y; }
    void setX(C value) { x = value; }
    void setY(C value) { y = value; }
    void set(C newX, C newY)
    {
        x = newX;
        y = newY;
    }

    friend bool operator==(const Derived& a, const Derived& b) { return a.x == b.x && a.y == b.y; }
    friend bool operator!=(const Derived& a, const Derived& b) { return !(a == b); }

    C x = 0;
    C y = 0;

protected:
    const Derived& self() const { return static_cast<const Derived&>(*this); }
    Derived& self() { return static_cast<Derived&>(*this); }
};
