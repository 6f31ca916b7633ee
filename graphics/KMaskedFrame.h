#pragma once

#include "graphics/KGraphicPoint.h"
#include "graphics/KGraphicsForward.h"
#include "graphics/KPixelBuffer.h"
#include "graphics/KWideRectangle.h"
#include "kernel/KThingPtr.h"

#include <cstdint>
#include <vector>

// A masked picture prepared once for drawing many times: an image and a
// mask of the same size, drawn as KAlphaImage's mode 0 draws them (the
// raster operations MergePaint with the mask, then And with the image).
//
// Each row is cut into runs by what the two operations do to a pixel:
// `Keep` leaves the target as it is (white mask over white image), `Cover`
// replaces it with a colour that does not depend on the target (a black
// mask, or a black image), and `Mix` needs the target (grey masks, a
// coloured image under a white mask). Drawing a row is then a row copy for
// the covered runs and one bitwise pass for the mixed ones, and a clip
// only shortens the runs. An image without a mask is one covering run a
// row.
class KMaskedFrame {
public:
    enum class RunKind : uint8_t { Keep, Cover, Mix };
    struct Run {
        int32_t x;
        int32_t length;
        RunKind kind;
        // Cover: `length` colours from here; Mix: `length` values to keep,
        // then `length` values to put.
        uint32_t offset;
    };

    KMaskedFrame() = default;

    // The pixel level: builds the runs from the two views, which must be of
    // the same size.
    void build(const KPixelBuffer& image, const KPixelBuffer& mask);
    // An image drawn without a mask: it covers all.
    void buildOpaque(const KPixelBuffer& image);
    // Draws with the picture's top left corner at (x, y) into the target,
    // within the clip (target coordinates). Returns the part of the target
    // that was drawn over, empty when none; pixels left alone keep their
    // top byte.
    KWideRectangle drawInto(const KPixelBuffer& target, int32_t x, int32_t y, const KWideRectangle& clip) const;

    // One row of the picture into a target row whose pixel 0 lies under
    // the picture's pixel -x, only for the picture's columns from <= i < to
    // (clamped to the picture).
    void drawRow(uint32_t* targetRow, int32_t row, int32_t x, int32_t from, int32_t to) const;

    // The device level: whether the image can be drawn this way (mode 0,
    // with a mask of its own size or none, pixels readable). Rebuilds the runs when
    // the image, its mask or their pixels changed since the last build.
    bool prepare(KAlphaImage& image);
    // Draws the prepared image at the point into the device, within its
    // clip. False, with nothing drawn, when the device cannot take it (no
    // pixel access, or not RGB24): the caller draws the usual way then.
    bool drawTo(KGraphicDevice& target, const KGraphicPoint& at) const;

    int32_t getWidth() const { return width; }
    int32_t getHeight() const { return height; }
    int32_t getRunCount() const { return int32_t(runs.size()); }
    // The runs of a row, in order of x.
    const Run* rowBegin(int32_t y) const { return runs.data() + rowStarts[size_t(y)]; }
    const Run* rowEnd(int32_t y) const { return runs.data() + rowStarts[size_t(y) + 1]; }

private:
    void clear();
    bool startBuild(const KPixelBuffer& image);
    void buildRow(const uint32_t* image, const uint32_t* mask);

    int32_t width = 0;
    int32_t height = 0;
    std::vector<Run> runs;
    // Index of each row's first run, and one past the last row.
    std::vector<uint32_t> rowStarts;
    std::vector<uint32_t> values;

    // What the runs were built from.
    KAlphaImagePtr builtImage;
    KImagePtr builtMask;
    uint32_t imageChanges = 0;
    uint32_t maskChanges = 0;
};
