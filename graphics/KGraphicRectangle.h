#pragma once

#include "graphics/KGraphicPoint.h"
#include "graphics/KGraphicSize.h"
#include "graphics/KGraphicsForward.h"
#include "kernel/KThing.h"

// A rectangle in device pixels: an origin and a size, 16 bits each member.
// The right and bottom edges lie outside: a 1 by 1 rectangle holds exactly
// its origin.
class KGraphicRectangle : public KThing {
    K_DECLARE_CLASS(KGraphicRectangle)
public:
    KGraphicRectangle() = default;
    KGraphicRectangle(int16_t x, int16_t y, int16_t width, int16_t height)
        : width(width)
        , height(height)
        , x(x)
        , y(y)
    {
    }
    KGraphicRectangle(const KGraphicPoint& origin, const KGraphicSize& size)
        : width(size.width)
        , height(size.height)
        , x(origin.x)
        , y(origin.y)
    {
    }
    KGraphicRectangle(const KGraphicRectangle& other)
        : KThing(other)
        , width(other.width)
        , height(other.height)
        , x(other.x)
        , y(other.y)
    {
    }
    KGraphicRectangle& operator=(const KGraphicRectangle& other)
    {
        width = other.width;
        height = other.height;
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

    void set(int16_t newX, int16_t newY, int16_t newWidth, int16_t newHeight);
    void setCorners(int16_t left, int16_t top, int16_t right, int16_t bottom);
    // right = x + width, bottom = y + height.
    void getCorners(int16_t& left, int16_t& top, int16_t& right, int16_t& bottom) const;

    KGraphicPoint getOrigin() const { return { x, y }; }
    KGraphicSize getSize() const { return { width, height }; }
    void setOrigin(const KGraphicPoint& origin);
    void setSize(const KGraphicSize& size);
    int16_t getX() const { return x; }
    int16_t getY() const { return y; }
    int16_t getWidth() const { return width; }
    int16_t getHeight() const { return height; }
    // The exclusive edges, unnarrowed.
    int32_t getRight() const { return int32_t(x) + width; }
    int32_t getBottom() const { return int32_t(y) + height; }

    // Width or height is 0 or less.
    bool isEmpty() const;
    bool contains(const KGraphicPoint& p) const;
    bool contains(int32_t px, int32_t py) const;
    bool intersects(const KGraphicRectangle& r) const;
    void uniteWith(const KGraphicRectangle& r);
    void intersectWith(const KGraphicRectangle& r);
    void grow(int16_t dx, int16_t dy);
    void shrink(int16_t dx, int16_t dy);
    void centreIn(const KGraphicRectangle& r);
    void offset(int16_t dx, int16_t dy);

    bool operator==(const KGraphicRectangle& other) const;
    bool operator!=(const KGraphicRectangle& other) const { return !(*this == other); }

    KWideRectangle toWide() const;

    int16_t width = 0;
    int16_t height = 0;
    int16_t x = 0;
    int16_t y = 0;
};
