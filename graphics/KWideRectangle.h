#pragma once

#include "graphics/KGraphicsForward.h"
#include "graphics/KWidePoint.h"
#include "graphics/KWideSize.h"
#include "kernel/KThing.h"

// The rectangle of KGraphicRectangle in 32 bits: an origin and a size, with
// exclusive right and bottom edges.
class KWideRectangle : public KThing {
    K_DECLARE_CLASS(KWideRectangle)
public:
    KWideRectangle() = default;
    KWideRectangle(int32_t x, int32_t y, int32_t width, int32_t height)
        : width(width)
        , height(height)
        , x(x)
        , y(y)
    {
    }
    KWideRectangle(const KWidePoint& origin, const KWideSize& size)
        : width(size.width)
        , height(size.height)
        , x(origin.x)
        , y(origin.y)
    {
    }
    KWideRectangle(const KWideRectangle& other)
        : KThing(other)
        , width(other.width)
        , height(other.height)
        , x(other.x)
        , y(other.y)
    {
    }
    KWideRectangle& operator=(const KWideRectangle& other)
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

    void set(int32_t newX, int32_t newY, int32_t newWidth, int32_t newHeight);
    void setCorners(int32_t left, int32_t top, int32_t right, int32_t bottom);
    void getCorners(int32_t& left, int32_t& top, int32_t& right, int32_t& bottom) const;

    KWidePoint getOrigin() const { return { x, y }; }
    KWideSize getSize() const { return { width, height }; }
    void setOrigin(const KWidePoint& origin);
    void setSize(const KWideSize& size);
    int32_t getX() const { return x; }
    int32_t getY() const { return y; }
    int32_t getWidth() const { return width; }
    int32_t getHeight() const { return height; }
    int32_t getRight() const { return int32_t(int64_t(x) + width); }
    int32_t getBottom() const { return int32_t(int64_t(y) + height); }

    bool isEmpty() const;
    bool contains(const KWidePoint& p) const;
    bool contains(int32_t px, int32_t py) const;
    bool intersects(const KWideRectangle& r) const;
    void uniteWith(const KWideRectangle& r);
    void intersectWith(const KWideRectangle& r);
    void grow(int32_t dx, int32_t dy);
    void shrink(int32_t dx, int32_t dy);
    void centreIn(const KWideRectangle& r);
    void offset(int32_t dx, int32_t dy);

    bool operator==(const KWideRectangle& other) const;
    bool operator!=(const KWideRectangle& other) const { return !(*this == other); }

    // Narrows every member to 16 bits.
    KGraphicRectangle toGraphic() const;

    int32_t width = 0;
    int32_t height = 0;
    int32_t x = 0;
    int32_t y = 0;
};
