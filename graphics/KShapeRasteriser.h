#pragma once

#include "graphics/KGraphicsForward.h"
#include "graphics/KSpanList.h"
#include "graphics/KWideRectangle.h"

#include <cstdint>
#include <vector>

struct KRasterPoint {
    int32_t x;
    int32_t y;
};

// The pixel sets of the device's shapes, computed without antialiasing.
//
// Ovals are the project's own: a pixel belongs to the oval inscribed in a
// w by h box when its centre lies within the ellipse whose radii are w / 2
// and h / 2 less a small margin. The margin keeps the smallest dabs round:
// a 3 by 3 oval is a plus, 4 by 4 loses its corners, and a 1 by 1 oval is
// one pixel. Rows are symmetric top to bottom and left to right.
namespace KShapeRasteriser {

// The left inset of each row of the oval in a width by height box; the row
// runs from the inset to width minus the inset, and is empty when the inset
// reaches the middle. The last few shapes are cached, as brush dabs repeat.
const std::vector<int32_t>& ovalInsets(int32_t width, int32_t height);

void addRectangleFrame(KSpanList& out, const KWideRectangle& r, int32_t pen);
void addOval(KSpanList& out, const KWideRectangle& r);
// Inside-frame pens: the frame is the shape less the shape shrunk by the pen.
void addOvalFrame(KSpanList& out, const KWideRectangle& r, int32_t pen);
// Corners are quarters of an oval of diameter by diameter.
void addRoundRectangle(KSpanList& out, const KWideRectangle& r, int32_t diameter);
void addRoundRectangleFrame(KSpanList& out, const KWideRectangle& r, int32_t diameter, int32_t pen);

// A line from one point to another. A pen of 1 leaves the end point out, so
// that joined lines touch each pixel once; wider pens stamp a square of the
// pen's size centred on every point, ends included.
void addLine(KSpanList& out, KRasterPoint from, KRasterPoint to, int32_t pen);
// Lines between consecutive points, and back to the first when closed.
void addPolyline(KSpanList& out, const std::vector<KRasterPoint>& points, bool closed, int32_t pen);
// The inside of a polygon by the even-odd rule, pixel centres sampled, for
// rows from top up to bottom (exclusive).
void addPolygon(KSpanList& out, const std::vector<KRasterPoint>& points, int32_t top, int32_t bottom);
// The closed path in one-pixel dashes and dots (9 on, 6 off, 3 on, 6 off),
// the pattern running on across the corners.
void addDashedPath(KSpanList& out, const std::vector<KRasterPoint>& points);

void addRegion(KSpanList& out, const KGraphicRegion& region);
// The pixels of the region that lie within pen pixels of its outside,
// computed for the part of the region near `limit`.
void addRegionFrame(KSpanList& out, const KGraphicRegion& region, int32_t pen, const KWideRectangle& limit);

// Every other pixel of the one-pixel outline, by the parity of x + y, so
// that drawing it twice removes it.
void addFocusRectangle(KSpanList& out, const KWideRectangle& r);
// A downward triangle 8 wide and 4 high centred in the rectangle.
void addPopupArrow(KSpanList& out, const KWideRectangle& r);

} // namespace KShapeRasteriser
