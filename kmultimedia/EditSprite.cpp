#include "kmultimedia/EditSprite.h"

#include "graphics/KColor.h"
#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicObject.h"
#include "graphics/KGraphicStateGuard.h"
#include "graphics/KWidePoint.h"
#include "graphics/KWideSize.h"
#include "kernel/KClass.h"
#include "kmultimedia/KSpriteLayer.h"
#include "kmultimedia/KSpriteSystem.h"
#include "windowing/KControl.h"
#include "windowing/KMouseEvent.h"
#include "windowing/KWindow.h"

#include <algorithm>

K_DEFINE_CLASS(EditSprite, KSprite)

namespace {

constexpr int32_t kShift = 1;
// No maximum: the largest 16-bit size.
constexpr float kNoMaximum = 32767.0f;

KGraphicRectangle inflated(const KGraphicRectangle& r, int16_t by)
{
    KGraphicRectangle result = r;
    result.grow(by, by);
    return result;
}

KGraphicPoint pointOf(const KMouseEvent& event)
{
    return KGraphicPoint(int16_t(event.getLocal().x), int16_t(event.getLocal().y));
}

bool isLeftHandle(int16_t code)
{
    return code == EditSprite::TopLeft || code == EditSprite::BottomLeft || code == EditSprite::Left;
}

bool isTopHandle(int16_t code) { return code == EditSprite::TopLeft || code == EditSprite::TopRight; }

bool isCorner(int16_t code)
{
    return code == EditSprite::TopLeft || code == EditSprite::TopRight || code == EditSprite::BottomLeft
           || code == EditSprite::BottomRight;
}

} // namespace

EditSprite::EditSprite() = default;

EditSprite::~EditSprite()
{
    graphicObject.clear();
    textControl.clear();
}

void EditSprite::setRectangle(const KGraphicRectangle& r)
{
    rectangle = r;
    setDirty(true);
}

void EditSprite::setMaximumSize(const KGraphicSize& size)
{
    maximumSize = size;
    hasMaximumSize = 1;
}

void EditSprite::setGraphicObject(KGraphicObject& object)
{
    graphicObject = object;
    setDirty(true);
}

void EditSprite::clearGraphicObject()
{
    graphicObject.clear();
    setDirty(true);
}

void EditSprite::setTextControl(KControl& control) { textControl = control; }

void EditSprite::clearTextControl() { textControl.clear(); }

KControl* EditSprite::getTextControl() const { return textControl.get(); }

KSpriteSystem* EditSprite::spriteSystem() const { return layer ? layer->getSystem() : nullptr; }

KGraphicPoint EditSprite::systemOrigin() const
{
    KSpriteSystem* system = spriteSystem();
    return system ? system->getDestinationRect().getOrigin() : KGraphicPoint(0, 0);
}

// --- Geometry and hit test -------------------------------------------------

KGraphicRectangle EditSprite::getBounds()
{
    KGraphicRectangle bounds = handleFrame();
    int32_t raisedTop = bounds.y + handleSize - kBarHeight;
    if (raisedTop < bounds.y) {
        bounds.height = int16_t(bounds.height + (bounds.y - raisedTop));
        bounds.y = int16_t(raisedTop);
    }
    return bounds;
}

KGraphicRectangle EditSprite::handleFrame() const { return inflated(rectangle, handleInset); }

KGraphicRectangle EditSprite::square(int32_t x, int32_t y) const
{
    return KGraphicRectangle(int16_t(x), int16_t(y), handleSize, handleSize);
}

bool EditSprite::topHandle(KGraphicRectangle& place) const
{
    KGraphicRectangle f = handleFrame();
    if (showBar) {
        place = KGraphicRectangle(int16_t(f.x + (f.width - kBarWidth) / 2), int16_t(f.y + handleSize - kBarHeight),
                                  kBarWidth, kBarHeight);
        return true;
    }
    if (showSideHandles) {
        place = square(f.x + (f.width - handleSize) / 2, f.y);
        return true;
    }
    return false;
}

int16_t EditSprite::handleAt(const KGraphicPoint& p) const
{
    KGraphicRectangle f = handleFrame();
    int32_t s = handleSize;
    int32_t right = f.x + f.width - s;
    int32_t bottom = f.y + f.height - s;
    int32_t centreX = f.x + (f.width - s) / 2;
    int32_t centreY = f.y + (f.height - s) / 2;
    KGraphicRectangle place;
    if (topHandle(place) && place.contains(p))
        return Top;
    const struct {
        int16_t code;
        KGraphicRectangle place;
        bool side;
    } handles[] = {
        { TopLeft, square(f.x, f.y), false },          { TopRight, square(right, f.y), false },
        { BottomRight, square(right, bottom), false }, { BottomLeft, square(f.x, bottom), false },
        { Bottom, square(centreX, bottom), true },     { Left, square(f.x, centreY), true },
        { Right, square(right, centreY), true },
    };
    for (const auto& handle : handles) {
        if (handle.side && !showSideHandles)
            continue;
        if (handle.place.contains(p))
            return handle.code;
    }
    return NoHandle;
}

int16_t EditSprite::hitTest(const KGraphicPoint& p)
{
    int16_t code = handleAt(p);
    if (code != NoHandle)
        return code;
    if (rectangle.contains(p))
        return Inside;
    if (inflated(rectangle, kBorderReach).contains(p))
        return Border;
    return NoHandle;
}

bool EditSprite::hits(const KGraphicPoint& p) { return hitTest(p) != NoHandle || rectangle.contains(p); }

// --- Drawing -------------------------------------------------------------------

void EditSprite::draw(KGraphicDevice& device)
{
    KGraphicStateGuard guard(device);
    drawFrame(device);
    drawObject(device);
    drawHandles(device);
    if (textControl)
        placeTextControl();
}

void EditSprite::drawFrame(KGraphicDevice& device)
{
    device.setPenSize(1);
    device.frameRectangle(inflated(rectangle, 1), KColor(KColor::Black));
    device.setPenSize(4);
    device.frameRectangle(inflated(rectangle, 5), KColor(KColor::White));
    device.setPenSize(1);
    device.frameRectangle(inflated(rectangle, 6), KColor(KColor::Black));
}

void EditSprite::drawObject(KGraphicDevice& device)
{
    if (!graphicObject)
        return;
    if (textControl)
        device.fillRectangle(rectangle, KColor(KColor::White));
    graphicObject->drawIn(device, rectangle);
}

void EditSprite::drawHandles(KGraphicDevice& device)
{
    device.setPenSize(1);
    auto mark = [&](const KGraphicRectangle& place) {
        device.fillRectangle(place, KColor(KColor::Black));
        device.frameRectangle(place, KColor(KColor::White));
    };
    KGraphicRectangle f = handleFrame();
    int32_t s = handleSize;
    int32_t right = f.x + f.width - s;
    int32_t bottom = f.y + f.height - s;
    KGraphicRectangle place;
    if (topHandle(place))
        mark(place);
    mark(square(f.x, f.y));
    mark(square(right, f.y));
    mark(square(right, bottom));
    mark(square(f.x, bottom));
    if (showSideHandles) {
        mark(square(f.x + (f.width - s) / 2, bottom));
        mark(square(f.x, f.y + (f.height - s) / 2));
        mark(square(right, f.y + (f.height - s) / 2));
    }
}

void EditSprite::placeTextControl()
{
    KGraphicPoint origin = systemOrigin();
    textControl->setPosition(KWidePoint(rectangle.x + origin.x, rectangle.y + origin.y));
    textControl->setSize(KWideSize(rectangle.width, rectangle.height));
}

// --- Press, drag, release ------------------------------------------------------

KEventReturn EditSprite::mouseDown(KMouseEvent& event)
{
    return press(pointOf(event), (event.getModifiers() & kShift) != 0);
}

KEventReturn EditSprite::mouseDragged(KMouseEvent& event)
{
    if (grabbedHandle == NoHandle)
        return 0;
    drag(pointOf(event));
    return 1;
}

KEventReturn EditSprite::mouseUp(KMouseEvent&)
{
    if (grabbedHandle == NoHandle)
        return 0;
    release();
    return 1;
}

KEventReturn EditSprite::press(const KGraphicPoint& point, bool shift)
{
    grabbedHandle = hitTest(point);
    if (grabbedHandle == NoHandle)
        return 0;
    if (shift && !allowShiftMove && grabbedHandle == Inside) {
        // The press belongs to what lies under the object.
        grabbedHandle = NoHandle;
        return 0;
    }
    pressRectangle = rectangle;
    pressPoint = point;
    if (textControl) {
        // The text travels as a picture while it is dragged, so the clock
        // that was held for typing may run.
        textControl->hide();
        if (KSpriteSystem* system = spriteSystem())
            system->resume();
        setDirty(true);
    }
    keepAspect = shift ? 1 : 0;
    aspectRatio = 0.0f;
    if (shift && rectangle.height > 1)
        aspectRatio = float(rectangle.width) / float(rectangle.height);
    return 4;
}

void EditSprite::drag(const KGraphicPoint& point)
{
    if (grabbedHandle == NoHandle)
        return;
    int32_t dx = point.x - pressPoint.x;
    int32_t dy = point.y - pressPoint.y;
    bool move = grabbedHandle == Inside || grabbedHandle == Border || grabbedHandle == Top;
    Extent result = move ? moved(dx, dy) : resized(dx, dy);
    snapToGrid(result);
    rectangle.set(int16_t(result.left), int16_t(result.top), int16_t(result.width), int16_t(result.height));
    setDirty(true);
}

void EditSprite::release()
{
    if (textControl) {
        placeTextControl();
        if (KSpriteSystem* system = spriteSystem())
            system->pause();
        textControl->show();
        textControl->setFocus(true);
    }
    grabbedHandle = NoHandle;
}

// The object keeps touching the limits: at the far side its edge may lie
// on the limits' edge, no farther.
EditSprite::Extent EditSprite::moved(int32_t dx, int32_t dy) const
{
    Extent e { pressRectangle.x + dx, pressRectangle.y + dy, pressRectangle.width, pressRectangle.height };
    if (e.left + e.width < limits.x)
        e.left = limits.x - e.width;
    if (e.top + e.height < limits.y)
        e.top = limits.y - e.height;
    e.left = std::min(e.left, limits.getRight());
    e.top = std::min(e.top, limits.getBottom());
    return e;
}

void EditSprite::fitSizeLimits(float& minW, float& minH, float& maxW, float& maxH) const
{
    minW = minimumSize.width;
    minH = minimumSize.height;
    maxW = hasMaximumSize ? float(maximumSize.width) : kNoMaximum;
    maxH = hasMaximumSize ? float(maximumSize.height) : kNoMaximum;
    float r = aspectRatio;
    if (!keepAspect || r <= 0.0f)
        return;
    if (minW / r < minH)
        minW = minH * r;
    else if (minH * r < minW)
        minH = minW / r;
    if (!hasMaximumSize)
        return;
    if (maxW / r > maxH)
        maxW = maxH * r;
    else if (maxH * r > maxW)
        maxH = maxW / r;
}

EditSprite::Extent EditSprite::resized(int32_t dx, int32_t dy) const
{
    const int32_t x = pressRectangle.x;
    const int32_t y = pressRectangle.y;
    const int32_t w = pressRectangle.width;
    const int32_t h = pressRectangle.height;
    const int32_t right = x + w;
    const int32_t bottom = y + h;
    const float r = aspectRatio;
    const bool ratio = keepAspect && r > 0.0f;
    Extent e { x, y, w, h };
    switch (grabbedHandle) {
    case TopLeft:
    case BottomRight:
        if (keepAspect)
            dx = dy = (dx + dy) / 2;
        break;
    case TopRight:
    case BottomLeft:
        if (keepAspect) {
            dx = (dx - dy) / 2;
            dy = -dx;
        }
        break;
    default:
        break;
    }
    switch (grabbedHandle) {
    case TopLeft:
        e = { x + dx, y + dy, w - dx, h - dy };
        break;
    case TopRight:
        e = { x, y + dy, w + dx, h - dy };
        break;
    case BottomRight:
        e = { x, y, w + dx, h + dy };
        break;
    case BottomLeft:
        e = { x + dx, y, w - dx, h + dy };
        break;
    case Left:
        e.left = x + dx;
        e.width = w - dx;
        if (ratio)
            e.height = int32_t(float(e.width) / r);
        break;
    case Right:
        e.width = w + dx;
        if (ratio)
            e.height = int32_t(float(e.width) / r);
        break;
    case Bottom:
        e.height = h + dy;
        if (ratio)
            e.width = int32_t(r * float(e.height));
        break;
    default:
        break;
    }

    float minW, minH, maxW, maxH;
    fitSizeLimits(minW, minH, maxW, maxH);
    e.width = int32_t(std::clamp(float(e.width), minW, std::max(minW, maxW)));
    e.height = int32_t(std::clamp(float(e.height), minH, std::max(minH, maxH)));
    if (ratio && isCorner(grabbedHandle)) {
        if (dx <= dy)
            e.width = int32_t(r * float(e.height));
        else
            e.height = int32_t(float(e.width) / r);
    }
    // A limited handle at the left or the top leaves the opposite edge
    // where it was.
    if (isLeftHandle(grabbedHandle))
        e.left = right - e.width;
    if (isTopHandle(grabbedHandle))
        e.top = bottom - e.height;
    return e;
}

void EditSprite::snapToGrid(Extent& e) const
{
    if (gridStep <= 1)
        return;
    e.left -= e.left % gridStep;
    e.top -= e.top % gridStep;
    e.width -= e.width % gridStep;
    e.height -= e.height % gridStep;
}
