#include "app/KSoundHiliteStrip.h"

#include "graphics/KColor.h"
#include "graphics/KFont.h"
#include "graphics/KGraphicClipGuard.h"
#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicStateGuard.h"
#include "kernel/KClass.h"
#include "kmultimedia/KSoundHiliteMarker.h"
#include "kmultimedia/KSoundHiliteMedia.h"
#include "windowing/KMouseEvent.h"
#include "windowing/KWindow.h"

#include <algorithm>

namespace {

// The word's box: right of the marker's line, near the strip's top.
constexpr int32_t kBoxLeft = 10;
constexpr int32_t kBoxTop = 5;
constexpr int32_t kMarginX = 6;
constexpr int32_t kMarginY = 2;
// The widest word box looked for left of the view: a merged phrase is
// seldom longer.
constexpr int32_t kWidestBox = 2000;
constexpr int32_t kAddingKeys = 1 | 2; // Shift or Control

int16_t clamp16(int32_t value) { return int16_t(std::clamp<int32_t>(value, -32768, 32767)); }

KGraphicRectangle rectangle(int32_t x, int32_t y, int32_t width, int32_t height)
{
    return KGraphicRectangle(clamp16(x), clamp16(y), clamp16(width), clamp16(height));
}

} // namespace

K_DEFINE_CLASS(KSoundHiliteStrip, KControl)

KSoundHiliteStrip::KSoundHiliteStrip() = default;

KSoundHiliteStrip::KSoundHiliteStrip(int32_t id, const KWideRectangle& bounds)
{
    setId(id);
    setPosition(bounds.getOrigin());
    setSize(bounds.getSize());
    setWantsCapture(true);
}

KSoundHiliteStrip::~KSoundHiliteStrip() = default;

void KSoundHiliteStrip::setMedia(KSoundHiliteMedia* value)
{
    media = value;
    dragged = -1;
    setOffset(offset);
    draw();
}

KSoundHiliteMedia* KSoundHiliteStrip::getMedia() const { return media.get(); }

void KSoundHiliteStrip::setDuration(int32_t milliseconds)
{
    duration = std::max(milliseconds, 0);
    draw();
}

int32_t KSoundHiliteStrip::widthFor(int32_t markerCount)
{
    int64_t width = int64_t(std::max(markerCount, 0)) * kMarkerWidth;
    return int32_t(std::clamp<int64_t>(width, kMinimumWidth, INT32_MAX / 2));
}

int32_t KSoundHiliteStrip::getStripWidth() const { return widthFor(media ? media->getMarkerCount() : 0); }

int32_t KSoundHiliteStrip::viewWidth() const { return std::max(getSize().width, 1); }

int32_t KSoundHiliteStrip::getMaximumOffset() const { return std::max(getStripWidth() - viewWidth(), 0); }

void KSoundHiliteStrip::setOffset(int32_t pixels)
{
    int32_t kept = std::clamp(pixels, 0, getMaximumOffset());
    if (kept == offset)
        return;
    offset = kept;
    draw();
}

void KSoundHiliteStrip::reveal(int32_t markerIndex)
{
    if (!media || markerIndex < 0 || markerIndex >= media->getMarkerCount())
        return;
    int32_t x = xOfTime(media->getMarkerAt(markerIndex)->getElapsedTime());
    if (x - 1 < offset || x + kMarkerWidth > offset + viewWidth())
        setOffset(x - viewWidth() / 4);
}

int32_t KSoundHiliteStrip::xOfTime(int32_t time) const
{
    if (duration <= 0)
        return 0;
    return int32_t(double(getStripWidth()) / double(duration) * double(time));
}

int32_t KSoundHiliteStrip::timeOfX(int32_t x) const
{
    return int32_t(double(duration) * double(x) / double(getStripWidth()));
}

int32_t KSoundHiliteStrip::markerAt(int32_t stripX) const
{
    for (int32_t i = 0; media && i < media->getMarkerCount(); ++i) {
        int32_t x = xOfTime(media->getMarkerAt(i)->getElapsedTime());
        if (stripX >= x - 1 && stripX < x + 2)
            return i;
    }
    return -1;
}

void KSoundHiliteStrip::clearSelection()
{
    for (int32_t i = 0; media && i < media->getMarkerCount(); ++i)
        media->getMarkerAt(i)->setSelected(false);
    draw();
}

void KSoundHiliteStrip::selectOnly(int32_t markerIndex)
{
    for (int32_t i = 0; media && i < media->getMarkerCount(); ++i)
        media->getMarkerAt(i)->setSelected(i == markerIndex);
    draw();
}

bool KSoundHiliteStrip::pressAt(int32_t viewX, bool adding)
{
    dragged = -1;
    if (!media)
        return false;
    if (!adding)
        clearSelection();
    pressedX = viewX + offset;
    int32_t hit = markerAt(pressedX);
    if (hit < 0)
        return false;
    media->getMarkerAt(hit)->setSelected(true);
    int32_t selected = 0;
    for (int32_t i = 0; i < media->getMarkerCount(); ++i)
        selected += media->getMarkerAt(i)->isSelected() ? 1 : 0;
    if (selected == 1)
        dragged = hit;
    draw();
    return dragged >= 0;
}

// The marker keeps at least 1 ms from each neighbour, and stays within the
// sound: a move past a neighbour leaves it 1 ms short of it.
void KSoundHiliteStrip::dragTo(int32_t viewX)
{
    if (!media || dragged < 0 || dragged >= media->getMarkerCount() || duration <= 0)
        return;
    int32_t lowest = dragged > 0 ? media->getMarkerAt(dragged - 1)->getElapsedTime() + 1 : 0;
    int32_t highest
        = dragged + 1 < media->getMarkerCount() ? media->getMarkerAt(dragged + 1)->getElapsedTime() - 1 : duration;
    if (lowest > highest || viewX + offset == pressedX)
        return;
    int32_t time = std::clamp(timeOfX(viewX + offset), lowest, highest);
    KSoundHiliteMarker& marker = *media->getMarkerAt(dragged);
    if (marker.getElapsedTime() == time)
        return;
    marker.setElapsedTime(time);
    draw();
}

void KSoundHiliteStrip::release() { dragged = -1; }

void KSoundHiliteStrip::drawMarker(KGraphicDevice& device, KFont& font, KSoundHiliteMarker& marker, int32_t x,
                                   int32_t top, int32_t right)
{
    bool selected = marker.isSelected();
    KColor line(selected ? KColor::Black : KColor::Grey);
    for (int32_t dx = -1; dx <= 1; ++dx)
        device.fillRectangle(rectangle(x + dx, top, 1, kHeight), line);
    KWideSize size = font.measureString(marker.getText());
    KGraphicRectangle box
        = rectangle(x + kBoxLeft, top + kBoxTop, size.width + 2 * kMarginX, size.height + 2 * kMarginY);
    if (box.x >= right)
        return;
    device.fillRectangle(box, KColor(selected ? KColor::Black : KColor::White));
    if (!selected)
        device.frameRectangle(box, KColor(KColor::Black));
    device.setForeground(KColor(selected ? KColor::White : KColor::Black));
    device.drawString(marker.getText(), KGraphicPoint(clamp16(box.x + kMarginX), clamp16(box.y + kMarginY)));
}

void KSoundHiliteStrip::render(KGraphicDevice& device, int32_t left, int32_t top)
{
    int32_t width = viewWidth();
    KGraphicClipGuard clip(device);
    KGraphicStateGuard state(device);
    device.intersectClip(rectangle(left, top, width, kHeight));
    device.fillRectangle(rectangle(left, top, width, kHeight), KColor(KColor::White));
    if (!media || duration <= 0)
        return;
    KFontPtr font(new KFont(KString(kFontName), kFontSize));
    device.setFont(*font);
    // Markers stand in time order, so the strip pixels rise with the index.
    for (int32_t i = 0; i < media->getMarkerCount(); ++i) {
        int32_t x = xOfTime(media->getMarkerAt(i)->getElapsedTime());
        if (x - 1 >= offset + width)
            break;
        if (x + kBoxLeft + kWidestBox < offset)
            continue;
        drawMarker(device, *font, *media->getMarkerAt(i), left + x - offset, top, left + width);
    }
    device.clearFont();
}

void KSoundHiliteStrip::paintOn(KWindow& target)
{
    KWideRectangle bounds = getWindowBounds();
    render(target, bounds.x, bounds.y);
}

int32_t KSoundHiliteStrip::viewXOf(const KMouseEvent& event) const { return event.getLocal().x - getWindowBounds().x; }

KEventReturn KSoundHiliteStrip::doMouseDown(KMouseEvent& event)
{
    return pressAt(viewXOf(event), (event.getModifiers() & kAddingKeys) != 0) ? 4 : 1;
}

KEventReturn KSoundHiliteStrip::doMouseMoved(KMouseEvent& event)
{
    if (dragged < 0)
        return 0;
    dragTo(viewXOf(event));
    return 1;
}

KEventReturn KSoundHiliteStrip::doMouseUp(KMouseEvent&)
{
    if (dragged < 0)
        return 0;
    release();
    return 1;
}
