#pragma once

#include "graphics/KClipRectangles.h"
#include "graphics/KPixelBuffer.h"
#include "graphics/KPixelOps.h"
#include "graphics/KSpanList.h"

#include <algorithm>
#include <vector>

// What a pen does to a pixel: copy a colour over it, or invert it exactly
// (XOR with white), so that inverting twice restores the page.
enum class KPenOp : int32_t { Set = 0, Invert = 1 };

// Clips runs of pixels to a device's clip and applies the pen to them, once
// a pixel. With pixel access it writes into memory at once; a target without
// it (a print job's vector context) gets the clipped runs to fill itself.
// Keeps the bounding box of what it touched, to tell the surface.
class KSpanPainter {
public:
    KSpanPainter(const KClipRectangles& clip, const KPixelBuffer* pixels, KPenOp op, uint32_t colour);

    [[gnu::always_inline]] void paint(int32_t y, int32_t x0, int32_t x1)
    {
        if (single) {
            if (y < cy0 || y >= cy1)
                return;
            if (x0 < cx0)
                x0 = cx0;
            if (x1 > cx1)
                x1 = cx1;
            if (x0 < x1)
                write(y, x0, x1);
            return;
        }
        clip.clipSpan(y, x0, x1, [&](int32_t a, int32_t b) { write(y, a, b); });
    }
    void paint(const KSpanList& spans);

    bool hasChanged() const { return changedX0 < changedX1; }
    KWideRectangle getChanged() const;
    const std::vector<KSpan>& collected() const { return spans; }
    KPenOp getOp() const { return op; }
    uint32_t getColour() const { return colour; }

    // The clipped row range; callers building a shape row by row skip the
    // rest.
    int32_t firstRow() const { return clipTop; }
    int32_t lastRow() const { return clipBottom; }

private:
    [[gnu::always_inline]] void write(int32_t y, int32_t x0, int32_t x1)
    {
        if (y < changedY0)
            changedY0 = y;
        if (y >= changedY1)
            changedY1 = y + 1;
        if (x0 < changedX0)
            changedX0 = x0;
        if (x1 > changedX1)
            changedX1 = x1;
        if (!pixels) {
            spans.push_back({ y, x0, x1 });
            return;
        }
        uint32_t* p = pixels->row(y) + x0;
        if (op == KPenOp::Set)
            KPixelOps::fillRun(p, x1 - x0, colour);
        else
            KPixelOps::invertRun(p, x1 - x0);
    }

    const KClipRectangles& clip;
    const KPixelBuffer* pixels;
    KPenOp op;
    uint32_t colour;
    bool single;
    int32_t cx0 = 0, cy0 = 0, cx1 = 0, cy1 = 0;
    int32_t clipTop = 0, clipBottom = 0;
    int32_t changedX0, changedY0, changedX1, changedY1;
    std::vector<KSpan> spans;
};
