#pragma once

#include "graphics/KGraphicPoint.h"
#include "windowing/KLayer.h"

#include <vector>

// A layer of objects the user selects, moves and resizes. A press picks an
// object (Shift adds it to the selection) and its handle; while the button
// is held, an outline drawn in exclusive-or mode shows where the objects
// go, snapped to the cursor manager's grid; the release moves or resizes.
class KDragObjectsLayer : public KLayer {
    K_DECLARE_CLASS(KDragObjectsLayer)
public:
    KDragObjectsLayer();
    ~KDragObjectsLayer() override;

    // The topmost object at the point (client terms); the error when none.
    KDragObject* getDragObject(const KGraphicPoint& point) const;
    // The same without the error.
    KDragObject* findDragObject(const KGraphicPoint& point) const;
    void addObject(KDragObject& object);
    void removeObject(KDragObject& object);
    const std::vector<KDragObjectPtr>& getObjects() const { return objects; }
    void selectAll();
    void deselectAll();
    int32_t countSelected() const;
    KWideRectangle getSelectionBounds() const;

    bool isDragging() const { return dragged.get() != nullptr; }
    int32_t getActiveHandle() const { return activeHandle; }
    const KWideRectangle& getDragRectangle() const { return dragRectangle; }

    void setWindow(KWindow* window) override;
    void resetWindow() override;
    KEventReturn doMouseDown(KMouseEvent& event) override;
    KEventReturn doMouseMoved(KMouseEvent& event) override;
    KEventReturn doMouseUp(KMouseEvent& event) override;
    KEventReturn doPaint(KWindowEvent& event) override;

private:
    // The drag rectangle for a pointer at (x, y): the start rectangle with
    // the active handle's edges moved, each edge cut to the grid.
    KWideRectangle draggedRectangle(int32_t x, int32_t y) const;
    void drawOutline(const KWideRectangle& r);
    void endDrag();

    std::vector<KDragObjectPtr> objects;
    KDragObjectPtr dragged;
    int32_t activeHandle = 0;
    KWideRectangle startRectangle;
    KWideRectangle dragRectangle;
    KWidePoint startPoint;
};
