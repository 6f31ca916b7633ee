#include "windowing/KDragObject.h"

#include "graphics/KColor.h"
#include "graphics/KGraphicStateGuard.h"
#include "kernel/KClass.h"
#include "windowing/KWindow.h"

namespace {

constexpr int32_t kHandles[] = {
    KDragObject::TopLeft, KDragObject::TopRight, KDragObject::BottomLeft, KDragObject::BottomRight,
    KDragObject::Left,    KDragObject::Right,    KDragObject::Top,        KDragObject::Bottom,
};

} // namespace

K_DEFINE_CLASS(KDragObject, KInteractiveElement)

KDragObject::KDragObject() { setElementFlag(Visible, true); }

KDragObject::KDragObject(const KWideRectangle& bounds)
    : KDragObject()
{
    setBounds(bounds);
}

KDragObject::~KDragObject() = default;

void KDragObject::setBounds(const KWideRectangle& bounds)
{
    setPosition(bounds.getOrigin());
    setSize(bounds.getSize());
    frame = KGraphicRectangle(int16_t(bounds.x), int16_t(bounds.y), int16_t(bounds.width), int16_t(bounds.height));
}

KWideRectangle KDragObject::getHandleRectangle(int32_t handle) const
{
    KWideRectangle r = getBounds();
    int32_t midX = r.x + r.width / 2;
    int32_t midY = r.y + r.height / 2;
    int32_t right = r.getRight() - 1;
    int32_t bottom = r.getBottom() - 1;
    int32_t x = midX;
    int32_t y = midY;
    if (handle & (Left | TopLeft | BottomLeft))
        x = r.x;
    if (handle & (Right | TopRight | BottomRight))
        x = right;
    if (handle & (Top | TopLeft | TopRight))
        y = r.y;
    if (handle & (Bottom | BottomLeft | BottomRight))
        y = bottom;
    int32_t half = handleSize / 2;
    return KWideRectangle(x - half, y - half, handleSize, handleSize);
}

// Corners before edges, so that a small object still offers its corners.
int32_t KDragObject::getHandleAt(const KWidePoint& point) const
{
    for (int32_t handle : kHandles) {
        if ((handleMask & handle) && getHandleRectangle(handle).contains(point))
            return handle;
    }
    return Move;
}

void KDragObject::moveBy(int32_t dx, int32_t dy)
{
    draw();
    KWideRectangle r = getBounds();
    r.x += dx;
    r.y += dy;
    setBounds(r);
    draw();
}

void KDragObject::resizeTo(const KWideRectangle& bounds)
{
    draw();
    setBounds(bounds);
    draw();
}

void KDragObject::setSelected(bool value)
{
    if (value == selected)
        return;
    selected = value;
    draw();
}

void KDragObject::paintHandles(KWindow& target) const
{
    KGraphicStateGuard guard(target);
    for (int32_t handle : kHandles) {
        if (!(handleMask & handle))
            continue;
        KWideRectangle r = getHandleRectangle(handle);
        KGraphicRectangle square(int16_t(r.x), int16_t(r.y), int16_t(r.width), int16_t(r.height));
        target.fillRectangle(square, KColor(KColor::White));
        target.frameRectangle(square, KColor(KColor::Black));
    }
}
