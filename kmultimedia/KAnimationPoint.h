#pragma once

#include "kernel/KThing.h"
#include "kmultimedia/KAnimationVector.h"
#include "kmultimedia/KMultimediaForward.h"

// A place in the scene in floating-point pixels: two floats, x then y.
class KAnimationPoint : public KThing {
    K_DECLARE_CLASS(KAnimationPoint)
public:
    KAnimationPoint() = default;
    KAnimationPoint(float x, float y)
        : x(x)
        , y(y)
    {
    }
    // Widens the 16-bit coordinates.
    explicit KAnimationPoint(const KGraphicPoint& p);
    KAnimationPoint(const KAnimationPoint& other)
        : KThing(other)
        , x(other.x)
        , y(other.y)
    {
    }
    KAnimationPoint& operator=(const KAnimationPoint& other)
    {
        x = other.x;
        y = other.y;
        return *this;
    }
    KAnimationPoint& operator=(const KGraphicPoint& p);

    KThing* deepCopy() const override;

    // One section: x and y as 32-bit floats.
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    // False, with the members as they were, when the record is damaged.
    bool readRecord(KFile& file);

    float getX() const { return x; }
    float getY() const { return y; }
    void set(float newX, float newY)
    {
        x = newX;
        y = newY;
    }

    bool operator==(const KAnimationPoint& other) const { return x == other.x && y == other.y; }
    bool operator!=(const KAnimationPoint& other) const { return !(*this == other); }
    // Moves the point by the vector.
    KAnimationPoint& operator+=(const KAnimationVector& v);

    float x = 0.0f;
    float y = 0.0f;
};
