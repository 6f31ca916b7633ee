#pragma once

#include "graphics/KGraphicsForward.h"
#include "kernel/KThing.h"

// A point in 32 bits, for scrolling areas and large documents.
class KWidePoint : public KThing {
    K_DECLARE_CLASS(KWidePoint)
public:
    KWidePoint() = default;
    KWidePoint(int32_t x, int32_t y)
        : x(x)
        , y(y)
    {
    }
    KWidePoint(const KWidePoint& other)
        : KThing(other)
        , x(other.x)
        , y(other.y)
    {
    }
    KWidePoint& operator=(const KWidePoint& other)
    {
        x = other.x;
        y = other.y;
        return *this;
    }

    KThing* deepCopy() const override;

    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    // Reads the record; false, with the members as they were, when it is
    // damaged or of another class.
    bool readRecord(KFile& file);

    int32_t getX() const { return x; }
    int32_t getY() const { return y; }
    void setX(int32_t value) { x = value; }
    void setY(int32_t value) { y = value; }
    void set(int32_t newX, int32_t newY)
    {
        x = newX;
        y = newY;
    }

    bool operator==(const KWidePoint& other) const { return x == other.x && y == other.y; }
    bool operator!=(const KWidePoint& other) const { return !(*this == other); }

    KWidePoint operator+(const KWidePoint& other) const;
    KWidePoint operator-(const KWidePoint& other) const;
    KWidePoint operator-() const;
    KWidePoint& operator+=(const KWidePoint& other);
    KWidePoint& operator-=(const KWidePoint& other);
    void offset(int32_t dx, int32_t dy);

    int32_t x = 0;
    int32_t y = 0;
};
