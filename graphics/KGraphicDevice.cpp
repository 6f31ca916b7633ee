#include "graphics/KGraphicDevice.h"

#include "graphics/KBoxFilter.h"
#include "graphics/KGraphicClipGuard.h"
#include "graphics/KGraphicObject.h"
#include "graphics/KGraphicStateGuard.h"
#include "graphics/KShapeRasteriser.h"
#include "graphics/native/KNativeDevice.h"
#include "graphics/native/KNativeText.h"
#include "kernel/KArray.h"
#include "kernel/KClass.h"

#include <algorithm>
#include <atomic>

K_DEFINE_CLASS(KGraphicDevice, KThing)

namespace {

int32_t gLiveDevices = 0;
// Devices are numbered once for the whole run, so that a cache can tell a
// new device from a dead one that happened to live at the same address.
std::atomic<uint64_t> gDeviceSerials { 0 };

// The colours of the three-dimensional edges, as the desktop's classic
// theme draws them; the light tone is the button face of the theme.
constexpr uint32_t kEdgeHighlight = 0xFFFFFF;
constexpr uint32_t kEdgeShadow = 0xA0A0A0;
constexpr uint32_t kEdgeDarkShadow = 0x696969;

uint32_t edgeLight() { return KColor(KColor::ButtonFace).getNative(); }

KRasterPoint toRaster(const KGraphicPoint& p) { return { p.x, p.y }; }

std::vector<KRasterPoint> toRaster(const std::vector<KGraphicPoint>& points)
{
    std::vector<KRasterPoint> result;
    result.reserve(points.size());
    for (const KGraphicPoint& p : points)
        result.push_back(toRaster(p));
    return result;
}

const KFont& systemFont()
{
    static KFont font { KStandardFont(0) };
    return font;
}

int32_t floorDivide(int32_t a, int32_t b)
{
    int32_t q = a / b;
    return (a % b != 0 && (a < 0) != (b < 0)) ? q - 1 : q;
}

bool sameSize(const KWideRectangle& a, const KWideRectangle& b) { return a.width == b.width && a.height == b.height; }

} // namespace

KGraphicDevice::KGraphicDevice()
    : serial(++gDeviceSerials)
{
    ++gLiveDevices;
}

KGraphicDevice::KGraphicDevice(int32_t owner)
    : owner(owner)
    , serial(++gDeviceSerials)
{
    ++gLiveDevices;
}

KGraphicDevice::~KGraphicDevice()
{
    delete nativeDevice;
    --gLiveDevices;
}

int32_t KGraphicDevice::liveDevices() { return gLiveDevices; }

// --- The native side -------------------------------------------------------

void KGraphicDevice::attachNativeDevice(KNativeDevice* device)
{
    if (device == nativeDevice)
        return;
    delete nativeDevice;
    nativeDevice = device;
    ++changeCount;
    if (!device) {
        bounds = KGraphicRectangle();
        depth = 0;
        resolutionX = resolutionY = 0.0;
        clipRegion.clear();
        updateClip();
        return;
    }
    bounds.set(0, 0, int16_t(std::min(device->getWidth(), 32767)), int16_t(std::min(device->getHeight(), 32767)));
    depth = device->getFormat() == KNativeDevice::Format::Argb32 ? 32 : 24;
    resolutionX = device->getResolutionX();
    resolutionY = device->getResolutionY();
    clipRegion.set(bounds);
    updateClip();
}

void KGraphicDevice::detachNativeDevice() { attachNativeDevice(nullptr); }

bool KGraphicDevice::hasPixelAccess() const { return nativeDevice && nativeDevice->hasPixels(); }

bool KGraphicDevice::beginPixelAccess(KPixelBuffer& pixels)
{
    return nativeDevice && nativeDevice->beginPixels(pixels);
}

void KGraphicDevice::endPixelAccess(const KWideRectangle& changed)
{
    if (!nativeDevice || changed.isEmpty())
        return;
    nativeDevice->endPixels(changed);
    noteChange(changed);
}

void KGraphicDevice::noteChange(const KWideRectangle& changed)
{
    ++changeCount;
    surfaceChanged(changed);
}

void KGraphicDevice::surfaceChanged(const KWideRectangle&) { }

// --- State -----------------------------------------------------------------

void KGraphicDevice::setForeground(const KColor& colour)
{
    if (!colour.isNativeEqual(state.foreground))
        state.foreground = colour;
}

void KGraphicDevice::setBackground(const KColor& colour)
{
    if (!colour.isNativeEqual(state.background))
        state.background = colour;
}

void KGraphicDevice::setPenMode(KGraphicDeviceState::PenMode mode) { state.penMode = mode; }
void KGraphicDevice::setPenSize(int16_t size) { state.penSize = size; }
void KGraphicDevice::setFont(KFont& font) { state.font = font; }
void KGraphicDevice::clearFont() { state.font.clear(); }

void KGraphicDevice::saveState()
{
    KGraphicDeviceStatePtr copy(new KGraphicDeviceState());
    copy->assign(state);
    stateStack.push_back(copy);
}

void KGraphicDevice::restoreState()
{
    if (stateStack.empty())
        return;
    state.assign(*stateStack.back());
    stateStack.pop_back();
}

KPenOp KGraphicDevice::penOp() const
{
    return state.penMode == KGraphicDeviceState::Invert ? KPenOp::Invert : KPenOp::Set;
}

uint32_t KGraphicDevice::penColour() const
{
    if (state.penMode == KGraphicDeviceState::CopyBackground)
        return state.background.getNative();
    return state.foreground.getNative();
}

// --- Clip ------------------------------------------------------------------

void KGraphicDevice::saveClip() { clipStack.push_back(clipRegion); }

void KGraphicDevice::restoreClip()
{
    if (clipStack.empty())
        return;
    clipRegion = clipStack.back();
    clipStack.pop_back();
    updateClip();
}

void KGraphicDevice::setClip(const KGraphicRectangle& rectangle)
{
    clipRegion.set(rectangle);
    updateClip();
}

void KGraphicDevice::setClip(const KGraphicRegion& region)
{
    clipRegion = region;
    updateClip();
}

void KGraphicDevice::intersectClip(const KGraphicRectangle& rectangle)
{
    clipRegion.intersectWith(rectangle.toWide());
    updateClip();
}

void KGraphicDevice::intersectClip(const KGraphicRegion& region)
{
    clipRegion.intersectWith(region);
    updateClip();
}

void KGraphicDevice::uniteClip(const KGraphicRectangle& rectangle)
{
    clipRegion.uniteWith(rectangle.toWide());
    updateClip();
}

void KGraphicDevice::uniteClip(const KGraphicRegion& region)
{
    clipRegion.uniteWith(region);
    updateClip();
}

void KGraphicDevice::resize(const KGraphicRectangle& rectangle)
{
    clipRegion.set(rectangle);
    bounds.uniteWith(rectangle);
    updateClip();
}

void KGraphicDevice::updateClip()
{
    if (!nativeDevice) {
        clipRects.clear();
        return;
    }
    clipRects.set(clipRegion, KWideRectangle(0, 0, nativeDevice->getWidth(), nativeDevice->getHeight()));
}

// --- Painting --------------------------------------------------------------

template<class Shape>
void KGraphicDevice::paint(KPenOp op, uint32_t colour, Shape&& shape)
{
    if (!nativeDevice || clipRects.isEmpty())
        return;
    KPixelBuffer pixels;
    bool direct = nativeDevice->beginPixels(pixels);
    KSpanPainter painter(clipRects, direct ? &pixels : nullptr, op, colour);
    shape(painter);
    if (!painter.hasChanged())
        return;
    if (direct)
        nativeDevice->endPixels(painter.getChanged());
    else
        nativeDevice->fillSpans(painter.collected(), op, colour);
    noteChange(painter.getChanged());
}

template<class Shape>
void KGraphicDevice::paintWithPen(Shape&& shape)
{
    paint(penOp(), penColour(), shape);
}

void KGraphicDevice::paintSpans(KSpanList& spans, bool normalise)
{
    if (!nativeDevice || spans.isEmpty())
        return;
    if (normalise)
        spans.normalise();
    paintWithPen([&](KSpanPainter& painter) { painter.paint(spans); });
}

// --- Pixels and lines ------------------------------------------------------

KColor KGraphicDevice::getPixel(int16_t x, int16_t y) const
{
    KPixelBuffer pixels;
    if (!nativeDevice || !nativeDevice->beginPixels(pixels) || !pixels.contains(x, y))
        return KColor();
    return KColor::fromNative(*pixels.at(x, y));
}

KColor KGraphicDevice::getPixel(const KGraphicPoint& p) const { return getPixel(p.x, p.y); }

void KGraphicDevice::setPixel(int16_t x, int16_t y, const KColor& colour)
{
    paint(KPenOp::Set, colour.getNative(), [&](KSpanPainter& painter) { painter.paint(y, x, x + 1); });
}

void KGraphicDevice::setPixel(const KGraphicPoint& p, const KColor& colour) { setPixel(p.x, p.y, colour); }
void KGraphicDevice::setPixel(int16_t x, int16_t y) { setPixel(x, y, state.foreground); }
void KGraphicDevice::setPixel(const KGraphicPoint& p) { setPixel(p.x, p.y, state.foreground); }

void KGraphicDevice::moveTo(int16_t x, int16_t y) { penPosition.set(x, y); }
void KGraphicDevice::moveTo(const KGraphicPoint& p) { penPosition = p; }

void KGraphicDevice::lineTo(int16_t x, int16_t y)
{
    KSpanList spans;
    KShapeRasteriser::addLine(spans, toRaster(penPosition), { x, y }, state.penSize);
    penPosition.set(x, y);
    paintSpans(spans, state.penSize > 1);
}

void KGraphicDevice::lineTo(const KGraphicPoint& p) { lineTo(p.x, p.y); }

void KGraphicDevice::line(const KGraphicPoint& from, const KGraphicPoint& to)
{
    moveTo(from);
    lineTo(to);
}

void KGraphicDevice::line(int16_t x1, int16_t y1, int16_t x2, int16_t y2)
{
    moveTo(x1, y1);
    lineTo(x2, y2);
}

void KGraphicDevice::lineHorizontal(int16_t x1, int16_t x2, int16_t y) { line(x1, y, x2, y); }
void KGraphicDevice::lineVertical(int16_t x, int16_t y1, int16_t y2) { line(x, y1, x, y2); }

// --- Shapes ----------------------------------------------------------------

void KGraphicDevice::frameRectangle(const KGraphicRectangle& r)
{
    KSpanList spans;
    KShapeRasteriser::addRectangleFrame(spans, r.toWide(), state.penSize);
    paintSpans(spans, false);
}

void KGraphicDevice::frameRectangle(const KGraphicRectangle& r, const KColor& colour)
{
    KGraphicStateGuard guard(*this);
    setForeground(colour);
    frameRectangle(r);
}

void KGraphicDevice::fillRectangle(const KGraphicRectangle& r)
{
    KWideRectangle box = r.toWide();
    if (box.isEmpty())
        return;
    paintWithPen([&](KSpanPainter& painter) {
        int32_t top = std::max(box.y, painter.firstRow());
        int32_t bottom = std::min(box.getBottom(), painter.lastRow());
        for (int32_t y = top; y < bottom; ++y)
            painter.paint(y, box.x, box.getRight());
    });
}

void KGraphicDevice::fillRectangle(const KGraphicRectangle& r, const KColor& colour)
{
    KGraphicStateGuard guard(*this);
    setForeground(colour);
    fillRectangle(r);
}

void KGraphicDevice::eraseRectangle(const KGraphicRectangle& r)
{
    KGraphicStateGuard guard(*this);
    setPenMode(KGraphicDeviceState::CopyBackground);
    fillRectangle(r);
}

void KGraphicDevice::invertFrame(const KGraphicRectangle& r)
{
    KGraphicStateGuard guard(*this);
    setPenMode(KGraphicDeviceState::Invert);
    frameRectangle(r);
}

void KGraphicDevice::frameRoundRectangle(const KGraphicRectangle& r, int16_t radius)
{
    KSpanList spans;
    KShapeRasteriser::addRoundRectangleFrame(spans, r.toWide(), radius, state.penSize);
    paintSpans(spans, false);
}

void KGraphicDevice::fillRoundRectangle(const KGraphicRectangle& r, int16_t radius)
{
    KSpanList spans;
    KShapeRasteriser::addRoundRectangle(spans, r.toWide(), radius);
    paintSpans(spans, false);
}

void KGraphicDevice::frameOval(const KGraphicRectangle& r)
{
    KSpanList spans;
    KShapeRasteriser::addOvalFrame(spans, r.toWide(), state.penSize);
    paintSpans(spans, false);
}

void KGraphicDevice::fillOval(const KGraphicRectangle& r)
{
    KWideRectangle box = r.toWide();
    if (box.isEmpty())
        return;
    // The brush's dab: straight from the cached rows of the shape into the
    // surface, with no list in between.
    paintWithPen([&](KSpanPainter& painter) {
        const std::vector<int32_t>& insets = KShapeRasteriser::ovalInsets(box.width, box.height);
        int32_t first = std::max(0, painter.firstRow() - box.y);
        int32_t last = std::min(box.height, painter.lastRow() - box.y);
        int32_t right = box.getRight();
        for (int32_t j = first; j < last; ++j) {
            int32_t inset = insets[size_t(j)];
            painter.paint(box.y + j, box.x + inset, right - inset);
        }
    });
}

void KGraphicDevice::drawString(const KString& text, const KGraphicPoint& p)
{
    if (!nativeDevice || clipRects.isEmpty() || text.isEmpty())
        return;
    const KFont& font = state.font ? *state.font : systemFont();
    nativeDevice->drawText(kGraphicsTextToUtf8(text), p.x, p.y, font.getNativeFont(), font.getFace(),
                           state.foreground.getNative(), clipRects);
    // Slanted and antialiased glyphs may reach a little beyond the box.
    KWideSize size = font.measureString(text);
    KWideRectangle changed(p.x - 2, p.y, size.width + 4, size.height);
    changed.intersectWith(clipRects.getBounds());
    if (!changed.isEmpty())
        noteChange(changed);
}

void KGraphicDevice::drawTextLayout(const KNativeTextLayout& layout, double x, double y, double scaleX, double scaleY,
                                    const KWideRectangle& extent)
{
    if (!nativeDevice || clipRects.isEmpty())
        return;
    KWideRectangle changed = extent;
    changed.intersectWith(clipRects.getBounds());
    if (changed.isEmpty())
        return;
    nativeDevice->drawTextLayout(layout, x, y, scaleX, scaleY, clipRects);
    noteChange(changed);
}

void KGraphicDevice::frameRegion(const KGraphicRegion& region)
{
    if (!nativeDevice)
        return;
    KSpanList spans;
    KShapeRasteriser::addRegionFrame(spans, region, state.penSize, clipRects.getBounds());
    paintSpans(spans, false);
}

void KGraphicDevice::fillRegion(const KGraphicRegion& region)
{
    if (!nativeDevice)
        return;
    KGraphicRegion visible(region);
    visible.intersectWith(clipRects.getBounds());
    KSpanList spans;
    KShapeRasteriser::addRegion(spans, visible);
    paintSpans(spans, false);
}

void KGraphicDevice::framePolygon(const std::vector<KGraphicPoint>& points)
{
    KSpanList spans;
    KShapeRasteriser::addPolyline(spans, toRaster(points), true, state.penSize);
    paintSpans(spans, true);
}

void KGraphicDevice::fillPolygon(const std::vector<KGraphicPoint>& points)
{
    if (!nativeDevice)
        return;
    std::vector<KRasterPoint> raster = toRaster(points);
    const KWideRectangle& limit = clipRects.getBounds();
    KSpanList spans;
    KShapeRasteriser::addPolygon(spans, raster, limit.y, limit.getBottom());
    KShapeRasteriser::addPolyline(spans, raster, true, state.penSize);
    paintSpans(spans, true);
}

void KGraphicDevice::drawDashedPath(const std::vector<KGraphicPoint>& points)
{
    KSpanList spans;
    KShapeRasteriser::addDashedPath(spans, toRaster(points));
    spans.normalise();
    // The dashed pen is made from the foreground in every mode; only the
    // inverting mode changes how it paints.
    paint(penOp(), state.foreground.getNative(), [&](KSpanPainter& painter) { painter.paint(spans); });
}

namespace {

std::vector<KGraphicPoint> pointsOf(const KArray& array)
{
    std::vector<KGraphicPoint> points;
    int32_t count = array.getSize();
    points.reserve(size_t(count > 0 ? count : 0));
    for (int32_t i = 0; i < count; ++i) {
        if (auto* point = dynamic_cast<KGraphicPoint*>(array.getAt(i)))
            points.push_back(*point);
    }
    return points;
}

} // namespace

void KGraphicDevice::framePolygon(const KArray& points) { framePolygon(pointsOf(points)); }

void KGraphicDevice::fillPolygon(const KArray& points) { fillPolygon(pointsOf(points)); }

void KGraphicDevice::drawDashedPath(const KArray& points) { drawDashedPath(pointsOf(points)); }

void KGraphicDevice::fillWithPattern(const KGraphicRectangle& r, KGraphicObject& tile)
{
    KGraphicRectangle tileBounds = tile.getBounds();
    int32_t width = tileBounds.width, height = tileBounds.height;
    if (width < 1 || height < 1 || r.isEmpty())
        return;
    KGraphicClipGuard guard(*this);
    intersectClip(r);
    int32_t x0 = floorDivide(r.x, width) * width;
    int32_t y0 = floorDivide(r.y, height) * height;
    for (int32_t y = y0; y < r.getBottom(); y += height) {
        for (int32_t x = x0; x < r.getRight(); x += width)
            tile.drawAt(*this, KGraphicPoint(int16_t(x), int16_t(y)));
    }
}

void KGraphicDevice::drawEdge(const KGraphicRectangle& r, uint32_t outerTopLeft, uint32_t outerBottomRight,
                              uint32_t innerTopLeft, uint32_t innerBottomRight)
{
    // One border: the top row and left column in one colour, the bottom row
    // and right column (with both far corners) in the other.
    auto border = [&](const KWideRectangle& box, uint32_t topLeft, uint32_t bottomRight) {
        if (box.isEmpty())
            return;
        int32_t right = box.getRight() - 1, bottom = box.getBottom() - 1;
        paint(KPenOp::Set, topLeft, [&](KSpanPainter& painter) {
            painter.paint(box.y, box.x, right);
            for (int32_t y = box.y + 1; y < bottom; ++y)
                painter.paint(y, box.x, box.x + 1);
        });
        paint(KPenOp::Set, bottomRight, [&](KSpanPainter& painter) {
            for (int32_t y = box.y; y < bottom; ++y)
                painter.paint(y, right, right + 1);
            painter.paint(bottom, box.x, right + 1);
        });
    };
    KWideRectangle box = r.toWide();
    border(box, outerTopLeft, outerBottomRight);
    box.shrink(1, 1);
    border(box, innerTopLeft, innerBottomRight);
}

void KGraphicDevice::drawEdgeEtched(const KGraphicRectangle& r)
{
    drawEdge(r, kEdgeShadow, kEdgeHighlight, kEdgeHighlight, kEdgeShadow);
}

void KGraphicDevice::drawEdgeRaised(const KGraphicRectangle& r)
{
    drawEdge(r, edgeLight(), kEdgeDarkShadow, kEdgeHighlight, kEdgeShadow);
}

void KGraphicDevice::drawEdgeSunken(const KGraphicRectangle& r)
{
    drawEdge(r, kEdgeShadow, kEdgeHighlight, kEdgeDarkShadow, edgeLight());
}

void KGraphicDevice::drawFocusRectangle(const KGraphicRectangle& r)
{
    KSpanList spans;
    KShapeRasteriser::addFocusRectangle(spans, r.toWide());
    paint(KPenOp::Invert, 0, [&](KSpanPainter& painter) { painter.paint(spans); });
}

void KGraphicDevice::drawPopupArrow(const KGraphicRectangle& r)
{
    KSpanList spans;
    KShapeRasteriser::addPopupArrow(spans, r.toWide());
    paintSpans(spans, false);
}

// --- Copies ----------------------------------------------------------------

void KGraphicDevice::copyTo(KGraphicDevice& target, const KGraphicRectangle& source,
                            const KGraphicRectangle& destination)
{
    copyArea(target, source.toWide(), destination.toWide());
}

void KGraphicDevice::copyTo(KGraphicDevice& target, const KGraphicRectangle& destination)
{
    copyArea(target, bounds.toWide(), destination.toWide());
}

void KGraphicDevice::copyTo(KGraphicDevice& target, const KGraphicPoint& p)
{
    copyArea(target, bounds.toWide(), KWideRectangle(p.x, p.y, bounds.width, bounds.height));
}

void KGraphicDevice::copyArea(KGraphicDevice& target, const KWideRectangle& from, const KWideRectangle& to)
{
    if (!nativeDevice || !target.nativeDevice || from.isEmpty() || to.isEmpty() || target.clipRects.isEmpty())
        return;
    bool equal = sameSize(from, to);
    // A plain RGB24 copy into an ARGB32 surface needs its alpha set, which
    // cairo does.
    bool formatsAllow = target.nativeDevice->getFormat() == KNativeDevice::Format::Rgb24
                        || nativeDevice->getFormat() == target.nativeDevice->getFormat();
    if (formatsAllow && hasPixelAccess() && target.hasPixelAccess()) {
        combine(target, from, to, [](const KPixelBuffer& d, const KPixelBuffer& s, const KPixelOps::Area& a) {
            KPixelOps::apply(d, s, a, KPixelOps::RasterOp::Copy);
        });
        return;
    }
    target.nativeDevice->paintFrom(*nativeDevice, from, to, target.clipRects,
                                   equal ? KNativeDevice::Filter::Exact : KNativeDevice::Filter::Smooth, false, 1.0);
    KWideRectangle changed = to;
    changed.intersectWith(target.clipRects.getBounds());
    if (!changed.isEmpty())
        target.noteChange(changed);
}

template<class Op>
void KGraphicDevice::combineEqualSize(KGraphicDevice& target, const KWideRectangle& from, const KWideRectangle& to,
                                      Op&& op)
{
    KPixelBuffer destination, source;
    if (!target.nativeDevice || !target.nativeDevice->beginPixels(destination) || !nativeDevice
        || !nativeDevice->beginPixels(source))
        return;
    int32_t dx = to.x - from.x, dy = to.y - from.y;
    // The destination pixels that have a source pixel.
    KWideRectangle valid(0, 0, source.width, source.height);
    valid.intersectWith(from);
    valid.offset(dx, dy);
    valid.intersectWith(to);
    valid.intersectWith(target.clipRects.getBounds());
    if (valid.isEmpty())
        return;
    // Within one device the source is read from a copy, so an area that
    // overlaps its destination comes out right.
    std::vector<uint32_t> copy;
    int32_t sourceDx = -dx, sourceDy = -dy;
    if (target.nativeDevice == nativeDevice) {
        copy.resize(size_t(valid.width) * size_t(valid.height));
        for (int32_t j = 0; j < valid.height; ++j)
            std::copy_n(source.at(valid.x - dx, valid.y - dy + j), valid.width, &copy[size_t(j) * size_t(valid.width)]);
        source = KPixelBuffer { copy.data(), valid.width, valid.width, valid.height };
        sourceDx = -valid.x;
        sourceDy = -valid.y;
    }
    KWideRectangle changed;
    for (const KWideRectangle& clip : target.clipRects.items()) {
        KWideRectangle part = valid;
        part.intersectWith(clip);
        if (part.isEmpty())
            continue;
        op(destination, source,
           KPixelOps::Area { part.x, part.y, part.x + sourceDx, part.y + sourceDy, part.width, part.height });
        changed.uniteWith(part);
    }
    if (changed.isEmpty())
        return;
    target.nativeDevice->endPixels(changed);
    target.noteChange(changed);
}

template<class Op>
void KGraphicDevice::combine(KGraphicDevice& target, const KWideRectangle& from, const KWideRectangle& to, Op&& op)
{
    if (!nativeDevice || !target.nativeDevice || from.isEmpty() || to.isEmpty() || target.clipRects.isEmpty())
        return;
    if (sameSize(from, to)) {
        combineEqualSize(target, from, to, op);
        return;
    }
    // Stretch first, into a surface only as large as the visible part.
    KWideRectangle sourceArea = from, destinationArea = to;
    if (!KBoxFilter::clipToSource(KWideRectangle(0, 0, nativeDevice->getWidth(), nativeDevice->getHeight()), sourceArea,
                                  destinationArea))
        return;
    KWideRectangle visible = destinationArea;
    visible.intersectWith(target.clipRects.getBounds());
    if (visible.isEmpty())
        return;
    KNativeDevice* stretched = KNativeDevice::createImage(visible.width, visible.height, nativeDevice->getFormat());
    KPixelBuffer in, out;
    if (!stretched || !nativeDevice->beginPixels(in) || !stretched->beginPixels(out)) {
        delete stretched;
        return;
    }
    KBoxFilter::stretch(in, sourceArea, destinationArea, visible, out);
    KWideRectangle whole(0, 0, visible.width, visible.height);
    stretched->endPixels(whole);
    KGraphicDevice temporary;
    temporary.attachNativeDevice(stretched);
    temporary.combineEqualSize(target, whole, visible, op);
}

void KGraphicDevice::rasterCopyTo(KGraphicDevice& target, const KWideRectangle& source,
                                  const KWideRectangle& destination, KPixelOps::RasterOp op)
{
    if (op == KPixelOps::RasterOp::Copy && !(hasPixelAccess() && target.hasPixelAccess())) {
        copyArea(target, source, destination);
        return;
    }
    if (!hasPixelAccess() || !target.hasPixelAccess())
        return;
    combine(target, source, destination, [op](const KPixelBuffer& d, const KPixelBuffer& s, const KPixelOps::Area& a) {
        KPixelOps::apply(d, s, a, op);
    });
}

void KGraphicDevice::blendTo(KGraphicDevice& target, const KWideRectangle& source, const KWideRectangle& destination,
                             uint8_t alpha)
{
    if (!nativeDevice || !target.nativeDevice || alpha == 0)
        return;
    bool premultiplied = nativeDevice->getFormat() == KNativeDevice::Format::Argb32;
    if (!hasPixelAccess() || !target.hasPixelAccess()) {
        target.nativeDevice->paintFrom(*nativeDevice, source, destination, target.clipRects,
                                       sameSize(source, destination) ? KNativeDevice::Filter::Exact
                                                                     : KNativeDevice::Filter::Smooth,
                                       true, alpha / 255.0);
        KWideRectangle changed = destination;
        changed.intersectWith(target.clipRects.getBounds());
        if (!changed.isEmpty())
            target.noteChange(changed);
        return;
    }
    combine(target, source, destination, [&](const KPixelBuffer& d, const KPixelBuffer& s, const KPixelOps::Area& a) {
        if (premultiplied)
            KPixelOps::blendPremultiplied(d, s, a, alpha);
        else
            KPixelOps::blendConstant(d, s, a, alpha);
    });
}
