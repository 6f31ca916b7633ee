#include "windowing/KDragObjectsLayer.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "windowing/KCursorManager.h"
#include "windowing/KDragObject.h"
#include "windowing/KMouseEvent.h"
#include "windowing/KWindow.h"

namespace {

// Integer division cuts toward zero, negative edges included.
int32_t snap(int32_t edge, int32_t grid) { return grid > 1 ? edge / grid * grid : edge; }

int32_t currentGrid()
{
    KCursorManager* cursor = KCursorManager::current();
    return cursor ? cursor->getGrid() : 1;
}

} // namespace

K_DEFINE_CLASS(KDragObjectsLayer, KLayer)

KDragObjectsLayer::KDragObjectsLayer() = default;

KDragObjectsLayer::~KDragObjectsLayer()
{
    for (auto& object : objects) {
        object->resetWindow();
        object->resetLayer();
    }
}

KDragObject* KDragObjectsLayer::findDragObject(const KGraphicPoint& point) const
{
    KWidePoint p(point.x, point.y);
    for (auto it = objects.rbegin(); it != objects.rend(); ++it) {
        KDragObject* object = it->get();
        if (!object->isVisible())
            continue;
        // A selected object's handles stick out of it and count as part of it.
        if (object->contains(p) || (object->isSelected() && object->getHandleAt(p) != KDragObject::Move))
            return object;
    }
    return nullptr;
}

KDragObject* KDragObjectsLayer::getDragObject(const KGraphicPoint& point) const
{
    KDragObject* object = findDragObject(point);
    if (!object)
        KErrorHandler::raiseError(KError::PointerNull);
    return object;
}

void KDragObjectsLayer::addObject(KDragObject& object)
{
    for (auto& held : objects) {
        if (held.get() == &object)
            return;
    }
    objects.emplace_back(&object);
    object.setLayer(this);
    object.setWindow(getWindow());
    object.draw();
}

void KDragObjectsLayer::removeObject(KDragObject& object)
{
    for (auto it = objects.begin(); it != objects.end(); ++it) {
        if (it->get() != &object)
            continue;
        KDragObjectPtr held = *it;
        if (dragged.get() == &object)
            endDrag();
        object.draw();
        objects.erase(it);
        object.resetWindow();
        object.resetLayer();
        return;
    }
}

void KDragObjectsLayer::setWindow(KWindow* window)
{
    KLayer::setWindow(window);
    for (auto& object : objects)
        object->setWindow(window);
}

void KDragObjectsLayer::resetWindow()
{
    dragged.clear();
    for (auto& object : objects)
        object->resetWindow();
    KLayer::resetWindow();
}

void KDragObjectsLayer::selectAll()
{
    for (auto& object : objects)
        object->setSelected(true);
}

void KDragObjectsLayer::deselectAll()
{
    for (auto& object : objects)
        object->setSelected(false);
}

int32_t KDragObjectsLayer::countSelected() const
{
    int32_t count = 0;
    for (auto& object : objects)
        count += object->isSelected() ? 1 : 0;
    return count;
}

KWideRectangle KDragObjectsLayer::getSelectionBounds() const
{
    KWideRectangle bounds;
    bool first = true;
    for (auto& object : objects) {
        if (!object->isSelected())
            continue;
        if (first)
            bounds = object->getBounds();
        else
            bounds.uniteWith(object->getBounds());
        first = false;
    }
    return bounds;
}

// --- Dragging --------------------------------------------------------------------

KEventReturn KDragObjectsLayer::doMouseDown(KMouseEvent& event)
{
    KGraphicPoint point(int16_t(event.getLocal().x), int16_t(event.getLocal().y));
    KDragObject* object = findDragObject(point);
    if (!object)
        return 0;
    if (!object->isSelected()) {
        if ((event.getModifiers() & 1) == 0)
            deselectAll();
        object->setSelected(true);
    }
    KWidePoint p(point.x, point.y);
    activeHandle = object->getHandleAt(p);
    dragged = object;
    if (countSelected() > 1) {
        dragRectangle = getSelectionBounds();
        activeHandle = KDragObject::Move;
    } else {
        dragRectangle = object->getBounds();
    }
    startRectangle = dragRectangle;
    startPoint = p;
    drawOutline(dragRectangle);
    return 4;
}

KWideRectangle KDragObjectsLayer::draggedRectangle(int32_t x, int32_t y) const
{
    int32_t dx = x - startPoint.x;
    int32_t dy = y - startPoint.y;
    int32_t left = startRectangle.x;
    int32_t top = startRectangle.y;
    int32_t right = startRectangle.getRight();
    int32_t bottom = startRectangle.getBottom();
    switch (activeHandle) {
    case KDragObject::Left:
        left += dx;
        break;
    case KDragObject::Right:
        right += dx;
        break;
    case KDragObject::Top:
        top += dy;
        break;
    case KDragObject::Bottom:
        bottom += dy;
        break;
    case KDragObject::TopLeft:
        top += dy;
        left += dx;
        break;
    case KDragObject::TopRight:
        top += dy;
        right += dx;
        break;
    case KDragObject::BottomLeft:
        bottom += dy;
        left += dx;
        break;
    case KDragObject::BottomRight:
        bottom += dy;
        right += dx;
        break;
    default:
        left += dx;
        right += dx;
        top += dy;
        bottom += dy;
        break;
    }
    int32_t grid = currentGrid();
    KWideRectangle result;
    result.setCorners(snap(left, grid), snap(top, grid), snap(right, grid), snap(bottom, grid));
    return result;
}

KEventReturn KDragObjectsLayer::doMouseMoved(KMouseEvent& event)
{
    if (!dragged)
        return 0;
    KWideRectangle next = draggedRectangle(event.getLocal().x, event.getLocal().y);
    if (next != dragRectangle) {
        drawOutline(dragRectangle);
        dragRectangle = next;
        drawOutline(dragRectangle);
    }
    return 1;
}

KEventReturn KDragObjectsLayer::doMouseUp(KMouseEvent& event)
{
    if (!dragged)
        return 0;
    KWideRectangle target = draggedRectangle(event.getLocal().x, event.getLocal().y);
    drawOutline(dragRectangle);
    KDragObjectPtr object = dragged;
    if (activeHandle == KDragObject::Move) {
        int32_t dx = target.x - startRectangle.x;
        int32_t dy = target.y - startRectangle.y;
        std::vector<KDragObjectPtr> held = objects;
        for (auto& each : held) {
            if (each->isSelected())
                each->moveBy(dx, dy);
        }
    } else {
        object->resizeTo(target);
    }
    endDrag();
    return 1;
}

void KDragObjectsLayer::endDrag()
{
    dragged.clear();
    activeHandle = 0;
}

// Inverting twice restores the pixels: the same call erases the outline.
void KDragObjectsLayer::drawOutline(const KWideRectangle& r)
{
    KWindow* window = getWindow();
    if (!window || r.isEmpty())
        return;
    window->invertFrame(KGraphicRectangle(int16_t(r.x), int16_t(r.y), int16_t(r.width), int16_t(r.height)));
}

KEventReturn KDragObjectsLayer::doPaint(KWindowEvent&)
{
    KWindow* window = getWindow();
    if (!window)
        return 0;
    for (auto& object : objects) {
        if (object->isVisible() && object->isSelected())
            object->paintHandles(*window);
    }
    return 0;
}
