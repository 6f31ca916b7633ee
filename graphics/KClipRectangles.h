#pragma once

#include "graphics/KWideRectangle.h"

#include <vector>

// The effective clip of a device as plain rectangles: its clip region cut
// to its surface. The rectangles come sorted by rows and do not overlap, so
// a run of pixels is clipped by a short scan. Most of the time the clip is
// one rectangle, which has a path of its own.
class KClipRectangles {
public:
    KClipRectangles() = default;

    void set(const KGraphicRegion& region, const KWideRectangle& surface);
    void setRectangle(const KWideRectangle& rectangle);
    void clear();

    bool isEmpty() const { return rectangles.empty(); }
    bool isSingle() const { return rectangles.size() == 1; }
    const KWideRectangle& getBounds() const { return bounds; }
    const std::vector<KWideRectangle>& items() const { return rectangles; }

    // Calls visit(x0, x1) for each clipped part of the run [x0, x1) on row y.
    template<class Visit>
    void clipSpan(int32_t y, int32_t x0, int32_t x1, Visit&& visit) const
    {
        if (y < top || y >= bottomEdge)
            return;
        for (const Band& r : bands) {
            if (y < r.y0)
                return;
            if (y >= r.y1)
                continue;
            int32_t a = x0 > r.x0 ? x0 : r.x0;
            int32_t b = x1 < r.x1 ? x1 : r.x1;
            if (a < b)
                visit(a, b);
        }
    }

private:
    struct Band {
        int32_t x0, y0, x1, y1;
    };
    void rebuild();

    std::vector<KWideRectangle> rectangles;
    std::vector<Band> bands;
    KWideRectangle bounds;
    int32_t top = 0;
    int32_t bottomEdge = 0;
};
