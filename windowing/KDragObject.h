#pragma once

#include "graphics/KGraphicRectangle.h"
#include "windowing/KInteractiveElement.h"

// An object of a drag-objects layer that the user moves and resizes. A
// selected object shows eight handles; a press on one resizes by the
// edges it names, a press elsewhere on the object moves it.
class KDragObject : public KInteractiveElement {
    K_DECLARE_CLASS(KDragObject)
public:
    // Handle codes; 0 is a move.
    enum Handle : int32_t {
        Move = 0,
        Left = 1,
        Right = 2,
        Top = 4,
        Bottom = 8,
        TopLeft = 16,
        TopRight = 32,
        BottomLeft = 64,
        BottomRight = 128,
        AllHandles = 255,
    };

    KDragObject();
    explicit KDragObject(const KWideRectangle& bounds);
    ~KDragObject() override;

    // The handle at the point (window terms), among those of the mask;
    // Move when the point is on none.
    virtual int32_t getHandleAt(const KWidePoint& point) const;
    // The square of a handle around its point on the outline.
    KWideRectangle getHandleRectangle(int32_t handle) const;
    virtual void moveBy(int32_t dx, int32_t dy);
    virtual void resizeTo(const KWideRectangle& bounds);

    bool isSelected() const { return selected; }
    virtual void setSelected(bool value);
    int16_t getHandleSize() const { return handleSize; }
    void setHandleSize(int16_t value) { handleSize = value; }
    int32_t getHandleMask() const { return handleMask; }
    void setHandleMask(int32_t value) { handleMask = value; }
    int32_t getDragFlags() const { return dragFlags; }
    void setDragFlags(int32_t value) { dragFlags = value; }
    const KGraphicRectangle& getFrame() const { return frame; }

    // The object's handles, drawn by its layer when it is selected.
    void paintHandles(KWindow& target) const;

private:
    void setBounds(const KWideRectangle& bounds);

    int16_t handleSize = 7;
    int32_t handleMask = AllHandles;
    KGraphicRectangle frame;
    bool selected = false;
    int32_t dragFlags = 0;
};
