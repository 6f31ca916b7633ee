#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>

// The rectangle rules shared by the 16-bit and the 32-bit rectangles. A
// rectangle is an origin and a size; its right and bottom edges are
// exclusive. The arithmetic is done in 64 bits and narrowed on storing, so
// edges beyond the coordinate range wrap only where they are stored.
namespace KRectangleMath {

template<class R>
bool isEmpty(const R& r)
{
    return r.width <= 0 || r.height <= 0;
}

template<class R>
int64_t right(const R& r) { return int64_t(r.x) + r.width; }
template<class R>
int64_t bottom(const R& r) { return int64_t(r.y) + r.height; }

template<class R>
void setCorners(R& r, int64_t left, int64_t top, int64_t rightEdge, int64_t bottomEdge)
{
    using C = decltype(r.x);
    r.x = C(left);
    r.y = C(top);
    r.width = C(rightEdge - left);
    r.height = C(bottomEdge - top);
}

template<class R>
bool contains(const R& r, int64_t px, int64_t py)
{
    return r.x <= px && px < right(r) && r.y <= py && py < bottom(r);
}

template<class R>
bool intersects(const R& r, const R& other)
{
    if (r.x >= right(other) || right(r) <= other.x)
        return false;
    if (r.y >= bottom(other) || bottom(r) <= other.y)
        return false;
    return true;
}

template<class R>
void uniteWith(R& r, const R& other)
{
    if (isEmpty(other))
        return;
    if (isEmpty(r)) {
        r.x = other.x;
        r.y = other.y;
        r.width = other.width;
        r.height = other.height;
        return;
    }
    setCorners(r, std::min<int64_t>(r.x, other.x), std::min<int64_t>(r.y, other.y),
               std::max(right(r), right(other)), std::max(bottom(r), bottom(other)));
}

template<class R>
void intersectWith(R& r, const R& other)
{
    int64_t left = std::max<int64_t>(r.x, other.x);
    int64_t top = std::max<int64_t>(r.y, other.y);
    int64_t rightEdge = std::min(right(r), right(other));
    int64_t bottomEdge = std::min(bottom(r), bottom(other));
    if (rightEdge <= left || bottomEdge <= top) {
        r.width = 0;
        r.height = 0;
        return;
    }
    setCorners(r, left, top, rightEdge, bottomEdge);
}

// The sign of the amounts is ignored.
template<class R>
void grow(R& r, int64_t dx, int64_t dy)
{
    using C = decltype(r.x);
    dx = std::llabs(dx);
    dy = std::llabs(dy);
    r.x = C(r.x - dx);
    r.y = C(r.y - dy);
    r.width = C(r.width + 2 * dx);
    r.height = C(r.height + 2 * dy);
}

// The reverse of grow, limited to half the size so that the rectangle never
// turns inside out.
template<class R>
void shrink(R& r, int64_t dx, int64_t dy)
{
    using C = decltype(r.x);
    dx = std::min<int64_t>(std::llabs(dx), std::max<int64_t>(r.width, 0) / 2);
    dy = std::min<int64_t>(std::llabs(dy), std::max<int64_t>(r.height, 0) / 2);
    r.x = C(r.x + dx);
    r.y = C(r.y + dy);
    r.width = C(r.width - 2 * dx);
    r.height = C(r.height - 2 * dy);
}

template<class R>
void centreIn(R& r, const R& other)
{
    using C = decltype(r.x);
    r.x = C(other.x + other.width / 2 - r.width / 2);
    r.y = C(other.y + other.height / 2 - r.height / 2);
}

} // namespace KRectangleMath
