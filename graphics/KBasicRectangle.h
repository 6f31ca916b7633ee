#pragma once

#include "graphics/KGraphicsStreams.h"
#include "kernel/KThing.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

// A rectangle of coordinates of type `C`: an origin and a size. The right
// and bottom edges lie outside: a 1 by 1 rectangle holds exactly its origin.
// The arithmetic is done in 64 bits and narrowed on storing, so edges beyond
// the coordinate range wrap only where they are stored.
//
// `Derived` is the registered class, `Point` and `Size` the classes of its
// origin and size, which it stores as whole records of theirs in its one
// section.
template<class Derived, class C, class Point, class Size>
class KBasicRectangle : public KThing {
public:
    using Coordinate = C;

    KBasicRectangle() = default;
    KBasicRectangle(C x, C y, C width, C height)
        : width(width)
        , height(height)
        , x(x)
        , y(y)
    {
    }
    KBasicRectangle(const Point& origin, const Size& size)
        : width(size.width)
        , height(size.height)
        , x(origin.x)
        , y(origin.y)
    {
    }
    KBasicRectangle(const KBasicRectangle& other)
        : KThing(other)
        , width(other.width)
        , height(other.height)
        , x(other.x)
        , y(other.y)
    {
    }
    KBasicRectangle& operator=(const KBasicRectangle& other)
    {
        width = other.width;
        height = other.height;
        x = other.x;
        y = other.y;
        return *this;
    }

    KThing* deepCopy() const override { return new Derived(static_cast<const Derived&>(*this)); }

    void readFromFile(KFile& file) override { readRecord(file); }
    void writeToFile(KFile& file, int32_t) override
    {
        KGraphicsStreams::writeMainSection(file, Derived::classRecord, [&] {
            Point origin = getOrigin();
            Size extent = getSize();
            origin.writeToFile(file, 1);
            extent.writeToFile(file, 1);
        });
    }
    // Reads the record; false, with the members as they were, when it is
    // damaged or of another class.
    bool readRecord(KFile& file)
    {
        Point origin;
        Size extent;
        bool read = KGraphicsStreams::readMainSection(
            file, Derived::classRecord, [&] { return origin.readRecord(file) && extent.readRecord(file); });
        if (read) {
            setOrigin(origin);
            setSize(extent);
        }
        return read;
    }

    void set(C newX, C newY, C newWidth, C newHeight)
    {
        x = newX;
        y = newY;
        width = newWidth;
        height = newHeight;
    }
    void setCorners(C left, C top, C right, C bottom) { storeCorners(left, top, right, bottom); }
    // right = x + width, bottom = y + height, narrowed.
    void getCorners(C& left, C& top, C& right, C& bottom) const
    {
        left = x;
        top = y;
        right = C(rightEdge());
        bottom = C(bottomEdge());
    }

    Point getOrigin() const { return { x, y }; }
    Size getSize() const { return { width, height }; }
    void setOrigin(const Point& origin)
    {
        x = origin.x;
        y = origin.y;
    }
    void setSize(const Size& size)
    {
        width = size.width;
        height = size.height;
    }
    C getX() const { return x; }
    C getY() const { return y; }
    C getWidth() const { return width; }
    C getHeight() const { return height; }
    // The exclusive edges in 32 bits: whole for 16-bit rectangles, wrapped
    // for 32-bit ones.
    int32_t getRight() const { return int32_t(rightEdge()); }
    int32_t getBottom() const { return int32_t(bottomEdge()); }

    // Width or height is 0 or less.
    bool isEmpty() const { return width <= 0 || height <= 0; }
    bool contains(const Point& p) const { return contains(p.x, p.y); }
    bool contains(int32_t px, int32_t py) const { return x <= px && px < rightEdge() && y <= py && py < bottomEdge(); }
    bool intersects(const Derived& r) const
    {
        if (x >= r.rightEdge() || rightEdge() <= r.x)
            return false;
        return y < r.bottomEdge() && bottomEdge() > r.y;
    }
    // An empty rectangle adds nothing; an empty receiver becomes the other.
    void uniteWith(const Derived& r)
    {
        if (r.isEmpty())
            return;
        if (isEmpty()) {
            set(r.x, r.y, r.width, r.height);
            return;
        }
        storeCorners(std::min<int64_t>(x, r.x), std::min<int64_t>(y, r.y), std::max(rightEdge(), r.rightEdge()),
                     std::max(bottomEdge(), r.bottomEdge()));
    }
    // Without overlap the size becomes 0 and the origin stays.
    void intersectWith(const Derived& r)
    {
        int64_t left = std::max<int64_t>(x, r.x);
        int64_t top = std::max<int64_t>(y, r.y);
        int64_t right = std::min(rightEdge(), r.rightEdge());
        int64_t bottom = std::min(bottomEdge(), r.bottomEdge());
        if (right <= left || bottom <= top) {
            width = 0;
            height = 0;
            return;
        }
        storeCorners(left, top, right, bottom);
    }
    // The sign of the amounts is ignored.
    void grow(C dx, C dy)
    {
        int64_t ax = std::llabs(dx);
        int64_t ay = std::llabs(dy);
        set(C(x - ax), C(y - ay), C(width + 2 * ax), C(height + 2 * ay));
    }
    // The reverse of grow, limited to half the size so that the rectangle
    // never turns inside out.
    void shrink(C dx, C dy)
    {
        int64_t ax = std::min<int64_t>(std::llabs(dx), std::max<int64_t>(width, 0) / 2);
        int64_t ay = std::min<int64_t>(std::llabs(dy), std::max<int64_t>(height, 0) / 2);
        set(C(x + ax), C(y + ay), C(width - 2 * ax), C(height - 2 * ay));
    }
    void centreIn(const Derived& r)
    {
        x = C(int64_t(r.x) + r.width / 2 - width / 2);
        y = C(int64_t(r.y) + r.height / 2 - height / 2);
    }
    void offset(C dx, C dy)
    {
        x = C(int64_t(x) + dx);
        y = C(int64_t(y) + dy);
    }

    friend bool operator==(const Derived& a, const Derived& b)
    {
        return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
    }
    friend bool operator!=(const Derived& a, const Derived& b) { return !(a == b); }

    C width = 0;
    C height = 0;
    C x = 0;
    C y = 0;

private:
    int64_t rightEdge() const { return int64_t(x) + width; }
    int64_t bottomEdge() const { return int64_t(y) + height; }
    void storeCorners(int64_t left, int64_t top, int64_t right, int64_t bottom)
    {
        set(C(left), C(top), C(right - left), C(bottom - top));
    }
};
