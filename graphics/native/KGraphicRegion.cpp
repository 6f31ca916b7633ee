#include "graphics/KGraphicRegion.h"

#include "graphics/KGraphicPoint.h"
#include "graphics/KGraphicRectangle.h"
#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"

#include <cairo.h>

#include <algorithm>
#include <climits>

K_DEFINE_CLASS(KGraphicRegion, KThing)

namespace {

cairo_region_t* native(KNativeRegion* region) { return reinterpret_cast<cairo_region_t*>(region); }
KNativeRegion* opaque(cairo_region_t* region) { return reinterpret_cast<KNativeRegion*>(region); }

// cairo keeps its regions in 32-bit coordinates whose far edge must fit as
// well; an empty or inverted rectangle is the empty region.
cairo_rectangle_int_t toCairo(const KWideRectangle& r)
{
    if (r.isEmpty())
        return { 0, 0, 0, 0 };
    int64_t right = std::min<int64_t>(int64_t(r.x) + r.width, INT_MAX);
    int64_t bottom = std::min<int64_t>(int64_t(r.y) + r.height, INT_MAX);
    return { r.x, r.y, int(right - r.x), int(bottom - r.y) };
}

} // namespace

KGraphicRegion::KGraphicRegion()
    : nativeRegion(opaque(cairo_region_create()))
{
}

KGraphicRegion::KGraphicRegion(const KGraphicRectangle& rectangle)
    : KGraphicRegion(rectangle.toWide())
{
}

KGraphicRegion::KGraphicRegion(const KWideRectangle& rectangle)
{
    cairo_rectangle_int_t r = toCairo(rectangle);
    nativeRegion = opaque(cairo_region_create_rectangle(&r));
}

KGraphicRegion::KGraphicRegion(KNativeRegion* adopted)
    : nativeRegion(adopted ? adopted : opaque(cairo_region_create()))
{
}

KGraphicRegion::KGraphicRegion(const KGraphicRegion& other)
    : KThing(other)
    , nativeRegion(opaque(cairo_region_copy(native(other.nativeRegion))))
{
}

KGraphicRegion& KGraphicRegion::operator=(const KGraphicRegion& other)
{
    if (this != &other) {
        cairo_region_t* copy = cairo_region_copy(native(other.nativeRegion));
        cairo_region_destroy(native(nativeRegion));
        nativeRegion = opaque(copy);
    }
    return *this;
}

KGraphicRegion::~KGraphicRegion() { cairo_region_destroy(native(nativeRegion)); }

KThing* KGraphicRegion::deepCopy() const { return new KGraphicRegion(*this); }

void KGraphicRegion::set(const KGraphicRectangle& rectangle) { set(rectangle.toWide()); }

void KGraphicRegion::set(const KWideRectangle& rectangle)
{
    cairo_rectangle_int_t r = toCairo(rectangle);
    cairo_region_destroy(native(nativeRegion));
    nativeRegion = opaque(cairo_region_create_rectangle(&r));
}

void KGraphicRegion::clear()
{
    cairo_region_destroy(native(nativeRegion));
    nativeRegion = opaque(cairo_region_create());
}

bool KGraphicRegion::isEmpty() const { return cairo_region_is_empty(native(nativeRegion)); }

KWideRectangle KGraphicRegion::getBounds() const
{
    if (isEmpty())
        return {};
    cairo_rectangle_int_t r;
    cairo_region_get_extents(native(nativeRegion), &r);
    return { r.x, r.y, r.width, r.height };
}

bool KGraphicRegion::contains(int32_t x, int32_t y) const
{
    return cairo_region_contains_point(native(nativeRegion), x, y);
}

bool KGraphicRegion::contains(const KGraphicPoint& p) const { return contains(p.x, p.y); }

bool KGraphicRegion::isRectangle(const KWideRectangle& rectangle) const
{
    if (rectangle.isEmpty())
        return isEmpty();
    return getRectangleCount() == 1 && getRectangle(0) == rectangle;
}

int32_t KGraphicRegion::getRectangleCount() const { return cairo_region_num_rectangles(native(nativeRegion)); }

KWideRectangle KGraphicRegion::getRectangle(int32_t index) const
{
    if (index < 0 || index >= getRectangleCount())
        return {};
    cairo_rectangle_int_t r;
    cairo_region_get_rectangle(native(nativeRegion), index, &r);
    return { r.x, r.y, r.width, r.height };
}

void KGraphicRegion::uniteWith(const KGraphicRegion& other)
{
    cairo_region_union(native(nativeRegion), native(other.nativeRegion));
}

void KGraphicRegion::uniteWith(const KWideRectangle& rectangle)
{
    cairo_rectangle_int_t r = toCairo(rectangle);
    cairo_region_union_rectangle(native(nativeRegion), &r);
}

void KGraphicRegion::intersectWith(const KGraphicRegion& other)
{
    cairo_region_intersect(native(nativeRegion), native(other.nativeRegion));
}

void KGraphicRegion::intersectWith(const KWideRectangle& rectangle)
{
    cairo_rectangle_int_t r = toCairo(rectangle);
    cairo_region_intersect_rectangle(native(nativeRegion), &r);
}

void KGraphicRegion::subtract(const KGraphicRegion& other)
{
    cairo_region_subtract(native(nativeRegion), native(other.nativeRegion));
}

void KGraphicRegion::subtract(const KWideRectangle& rectangle)
{
    cairo_rectangle_int_t r = toCairo(rectangle);
    cairo_region_subtract_rectangle(native(nativeRegion), &r);
}

void KGraphicRegion::offset(int32_t dx, int32_t dy) { cairo_region_translate(native(nativeRegion), dx, dy); }

void KGraphicRegion::inset(int16_t, int16_t) { KErrorHandler::notice("Not Yet Implemented!"); }

void KGraphicRegion::readFromFile(KFile&) { KErrorHandler::notice("Not Yet Implemented!"); }

void KGraphicRegion::writeToFile(KFile&, int32_t) { KErrorHandler::notice("Not Yet Implemented!"); }

bool KGraphicRegion::operator==(const KGraphicRegion& other) const
{
    return cairo_region_equal(native(nativeRegion), native(other.nativeRegion));
}
