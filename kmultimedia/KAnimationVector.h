#pragma once

#include "kernel/KThing.h"
#include "kmultimedia/KMultimediaForward.h"

// A displacement or a factor pair of the animation: two floats, x then y.
//
// The sum and the product with another vector are lopsided on purpose:
// both take the receiver's x alone, so a + b is (a.x + b.x, a.x + b.y) and
// a * b is (a.x * b.x, a.x * b.y). Stored animations were made with these.
class KAnimationVector : public KThing {
    K_DECLARE_CLASS(KAnimationVector)
public:
    KAnimationVector() = default;
    KAnimationVector(float x, float y)
        : x(x)
        , y(y)
    {
    }
    KAnimationVector(const KAnimationVector& other)
        : KThing(other)
        , x(other.x)
        , y(other.y)
    {
    }
    KAnimationVector& operator=(const KAnimationVector& other)
    {
        x = other.x;
        y = other.y;
        return *this;
    }

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

    bool operator==(const KAnimationVector& other) const { return x == other.x && y == other.y; }
    bool operator!=(const KAnimationVector& other) const { return !(*this == other); }
    KAnimationVector& operator+=(const KAnimationVector& other);
    KAnimationVector operator+(const KAnimationVector& other) const;
    KAnimationVector operator*(const KAnimationVector& other) const;

    float x = 0.0f;
    float y = 0.0f;
};
