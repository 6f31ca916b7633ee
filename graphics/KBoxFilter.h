#pragma once

#include "graphics/KPixelBuffer.h"
#include "graphics/KWideRectangle.h"

// Stretching by a box filter: every destination pixel is the area-weighted
// mean of the source pixels it covers. Shrinking averages (the half-tone
// look); enlarging by whole factors repeats pixels exactly, so masks keep
// hard edges. All four bytes of a pixel are filtered alike, which is right
// for premultiplied ARGB32 as well.
namespace KBoxFilter {

// Stretches `from` (inside the source) over `to` (destination coordinates)
// and writes the destination pixels within `visible` (a part of `to`) into
// `out`, whose pixel (0, 0) stands for visible's origin.
void stretch(const KPixelBuffer& source, const KWideRectangle& from, const KWideRectangle& to,
             const KWideRectangle& visible, const KPixelBuffer& out);

// The part of `from` that lies within `sourceBounds`, and the part of `to`
// it maps onto; false when nothing is left.
bool clipToSource(const KWideRectangle& sourceBounds, KWideRectangle& from, KWideRectangle& to);

} // namespace KBoxFilter
