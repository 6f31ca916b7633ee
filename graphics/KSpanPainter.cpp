#include "graphics/KSpanPainter.h"

#include <climits>

KSpanPainter::KSpanPainter(const KClipRectangles& clip, const KPixelBuffer* pixels, KPenOp op, uint32_t colour)
    : clip(clip)
    , pixels(pixels && pixels->isValid() ? pixels : nullptr)
    , op(op)
    , colour(colour)
    , single(clip.isSingle())
    , changedX0(INT_MAX)
    , changedY0(INT_MAX)
    , changedX1(INT_MIN)
    , changedY1(INT_MIN)
{
    const KWideRectangle& b = clip.getBounds();
    if (single) {
        cx0 = b.x;
        cy0 = b.y;
        cx1 = b.getRight();
        cy1 = b.getBottom();
    }
    clipTop = b.y;
    clipBottom = b.isEmpty() ? b.y : b.getBottom();
}

void KSpanPainter::paint(const KSpanList& list)
{
    for (const KSpan& s : list)
        paint(s.y, s.x0, s.x1);
}

KWideRectangle KSpanPainter::getChanged() const
{
    if (!hasChanged())
        return {};
    return { changedX0, changedY0, changedX1 - changedX0, changedY1 - changedY0 };
}
