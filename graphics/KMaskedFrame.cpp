#include "graphics/KMaskedFrame.h"

#include "graphics/KAlphaImage.h"
#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicRegion.h"
#include "graphics/KPixelOps.h"
#include "graphics/native/KNativeDevice.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr uint32_t kColour = KPixelBuffer::kColourBits;

// What (d OR NOT mask) AND image does to a target pixel d: it keeps
// d AND image and puts NOT mask AND image.
KMaskedFrame::RunKind kindOf(uint32_t keep, uint32_t put)
{
    if (keep == kColour && put == 0)
        return KMaskedFrame::RunKind::Keep;
    if (keep == put)
        return KMaskedFrame::RunKind::Cover;
    return KMaskedFrame::RunKind::Mix;
}

} // namespace

void KMaskedFrame::clear()
{
    width = height = 0;
    runs.clear();
    rowStarts.assign(1, 0);
    values.clear();
}

bool KMaskedFrame::startBuild(const KPixelBuffer& image)
{
    clear();
    if (!image.isValid())
        return false;
    width = image.width;
    height = image.height;
    rowStarts.reserve(size_t(height) + 1);
    return true;
}

void KMaskedFrame::build(const KPixelBuffer& image, const KPixelBuffer& mask)
{
    if (!mask.isValid() || image.width != mask.width || image.height != mask.height) {
        clear();
        return;
    }
    if (!startBuild(image))
        return;
    for (int32_t y = 0; y < height; ++y) {
        buildRow(image.row(y), mask.row(y));
        rowStarts.push_back(uint32_t(runs.size()));
    }
}

void KMaskedFrame::buildOpaque(const KPixelBuffer& image)
{
    if (!startBuild(image))
        return;
    values.reserve(size_t(width) * size_t(height));
    for (int32_t y = 0; y < height; ++y) {
        const uint32_t* row = image.row(y);
        runs.push_back(Run { 0, width, RunKind::Cover, uint32_t(values.size()) });
        for (int32_t x = 0; x < width; ++x)
            values.push_back(row[x] & kColour);
        rowStarts.push_back(uint32_t(runs.size()));
    }
}

void KMaskedFrame::buildRow(const uint32_t* image, const uint32_t* mask)
{
    int32_t x = 0;
    while (x < width) {
        uint32_t keep = image[x] & kColour;
        RunKind kind = kindOf(keep, ~mask[x] & keep);
        int32_t end = x + 1;
        while (end < width) {
            uint32_t k = image[end] & kColour;
            if (kindOf(k, ~mask[end] & k) != kind)
                break;
            ++end;
        }
        Run run { x, end - x, kind, uint32_t(values.size()) };
        if (kind == RunKind::Cover) {
            for (int32_t i = x; i < end; ++i)
                values.push_back(image[i] & kColour);
        } else if (kind == RunKind::Mix) {
            for (int32_t i = x; i < end; ++i)
                values.push_back(image[i] & kColour);
            for (int32_t i = x; i < end; ++i)
                values.push_back(~mask[i] & image[i] & kColour);
        }
        if (kind != RunKind::Keep)
            runs.push_back(run);
        x = end;
    }
}

void KMaskedFrame::drawRow(uint32_t* target, int32_t y, int32_t x, int32_t from, int32_t to) const
{
    from = std::max(from, 0);
    to = std::min(to, width);
    for (const Run* run = rowBegin(y); run != rowEnd(y); ++run) {
        if (run->x >= to)
            break;
        int32_t start = std::max(run->x, from);
        int32_t end = std::min(run->x + run->length, to);
        if (start >= end)
            continue;
        int32_t skip = start - run->x;
        int32_t n = end - start;
        const uint32_t* source = values.data() + run->offset + skip;
        if (run->kind == RunKind::Cover)
            std::memcpy(target + (x + start), source, size_t(n) * sizeof(uint32_t));
        else
            KPixelOps::keepAndPutRow(target + (x + start), source, source + run->length, n);
    }
}

KWideRectangle KMaskedFrame::drawInto(const KPixelBuffer& target, int32_t x, int32_t y,
                                      const KWideRectangle& clip) const
{
    KWideRectangle area(x, y, width, height);
    area.intersectWith(clip);
    area.intersectWith(KWideRectangle(0, 0, target.width, target.height));
    if (area.isEmpty() || !target.isValid())
        return KWideRectangle();
    int32_t from = area.x - x;
    int32_t to = from + area.width;
    for (int32_t row = area.y; row < area.getBottom(); ++row) {
        // Target rows lie a stride apart, out of reach of the processor's
        // own prefetching: the next one is asked for while this one is
        // drawn.
        if (row + 1 < area.getBottom())
            KPixelOps::prefetchRowForWriting(target.at(area.x, row + 1), area.width);
        drawRow(target.row(row), row - y, x, from, to);
    }
    return area;
}

bool KMaskedFrame::prepare(KAlphaImage& image)
{
    KImage* mask = image.getMask();
    if (mask && !mask->hasImage())
        mask = nullptr;
    if (image.getBlendMode() != KAlphaImage::Masked || !image.hasImage()
        || (mask && mask->getSize() != image.getSize()))
        return false;
    KGraphicDevice& imageDevice = image.getDevice();
    uint32_t maskNow = mask ? mask->getDevice().getChangeCount() : 0;
    bool current = builtImage.get() == &image && builtMask.get() == mask && imageChanges == imageDevice.getChangeCount()
                   && maskChanges == maskNow;
    if (current)
        return width > 0;
    KPixelBuffer imagePixels, maskPixels;
    if (!imageDevice.beginPixelAccess(imagePixels) || (mask && !mask->getDevice().beginPixelAccess(maskPixels)))
        return false;
    if (mask)
        build(imagePixels, maskPixels);
    else
        buildOpaque(imagePixels);
    builtImage = image;
    builtMask = mask;
    imageChanges = imageDevice.getChangeCount();
    maskChanges = maskNow;
    return width > 0;
}

bool KMaskedFrame::drawTo(KGraphicDevice& target, const KGraphicPoint& at) const
{
    if (width == 0 || !target.hasPixelAccess() || target.getNativeDevice()->getFormat() != KNativeDevice::Format::Rgb24)
        return false;
    KPixelBuffer pixels;
    if (!target.beginPixelAccess(pixels))
        return false;
    KWideRectangle reachable = target.getBounds().toWide();
    KWideRectangle changed;
    const KGraphicRegion& clip = target.getClip();
    for (int32_t i = 0; i < clip.getRectangleCount(); ++i) {
        KWideRectangle part = clip.getRectangle(i);
        part.intersectWith(reachable);
        changed.uniteWith(drawInto(pixels, at.x, at.y, part));
    }
    target.endPixelAccess(changed);
    return true;
}
