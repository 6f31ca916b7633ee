#include "graphics/KClipRectangles.h"

#include "graphics/KGraphicRegion.h"

void KClipRectangles::set(const KGraphicRegion& region, const KWideRectangle& surface)
{
    rectangles.clear();
    int32_t count = region.getRectangleCount();
    for (int32_t i = 0; i < count; ++i) {
        KWideRectangle r = region.getRectangle(i);
        r.intersectWith(surface);
        if (!r.isEmpty())
            rectangles.push_back(r);
    }
    rebuild();
}

void KClipRectangles::setRectangle(const KWideRectangle& rectangle)
{
    rectangles.clear();
    if (!rectangle.isEmpty())
        rectangles.push_back(rectangle);
    rebuild();
}

void KClipRectangles::clear()
{
    rectangles.clear();
    rebuild();
}

void KClipRectangles::rebuild()
{
    bands.clear();
    bounds = KWideRectangle();
    for (const KWideRectangle& r : rectangles) {
        bands.push_back({ r.x, r.y, r.getRight(), r.getBottom() });
        bounds.uniteWith(r);
    }
    top = bounds.y;
    bottomEdge = bounds.isEmpty() ? bounds.y : bounds.getBottom();
}
