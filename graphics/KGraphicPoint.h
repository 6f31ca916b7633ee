#pragma once

#include "graphics/KGraphicsForward.h"
#include "kernel/KThing.h"

// A point in device pixels, 16 bits a coordinate; y grows downwards.
class KGraphicPoint : public KThing {
    K_DECLARE_CLASS(KGraphicPoint)
public:
    KGraphicPoint() = default;
    KGraphicPoint(int16_t x, int16_t y)
        : x(x)
        , y(y)
    {
    }
    KGraphicPoint(const KGraphicPoint& other)
        : KThing(other)
        , x(other.x)
        , y(other.y)
    {
    }
    KGraphicPoint& operator=(const KGraphicPoint& other)
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

    int16_t getX() const { return x; }
    int16_t getY() const { return y; }
    void setX(int16_t value) { x = value; }
    void setY(int16_t value) { y = value; }
    void set(int16_t newX, int16_t newY)
    {
        x = newX;
        y = newY;
    }

    bool operator==(const KGraphicPoint& other) const { return x == other.x && y == other.y; }
    bool operator!=(const KGraphicPoint& other) const { return !(*this == other); }

    // Arithmetic wraps in 16 bits, as the stored coordinates do.
    KGraphicPoint operator+(const KGraphicPoint& other) const { return { int16_t(x + other.x), int16_t(y + other.y) }; }
    KGraphicPoint operator-(const KGraphicPoint& other) const { return { int16_t(x - other.x), int16_t(y - other.y) }; }
    KGraphicPoint operator-() const { return { int16_t(-x), int16_t(-y) }; }
    KGraphicPoint& operator+=(const KGraphicPoint& other);
    KGraphicPoint& operator-=(const KGraphicPoint& other);
    void offset(int16_t dx, int16_t dy);

    int16_t x = 0;
    int16_t y = 0;
};
