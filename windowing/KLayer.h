#pragma once

#include "windowing/KInteractiveElement.h"

// A stack level of a window. The window offers mouse and paint events to
// its layers, the last (topmost) first; a layer without a size of its own
// covers the whole client area.
class KLayer : public KInteractiveElement {
    K_DECLARE_CLASS(KLayer)
public:
    KLayer();
    ~KLayer() override;

    void setWindow(KWindow* window) override;
    void resetWindow() override;
    // Where the layer's native parts (controls) have to be made or dropped:
    // when its window opens or closes, or when it joins an open window.
    virtual void createNativeParts();
    virtual void removeNativeParts();
    virtual KEventReturn doEvent(KEvent& event);
    virtual KEventReturn doClose();
    KWideRectangle getBounds() const override;

    virtual KEventReturn doMouseEnter(KMouseEvent& event);
    virtual KEventReturn doMouseLeave(KMouseEvent& event);
    virtual KEventReturn doMouseDown(KMouseEvent& event);
    virtual KEventReturn doMouseMoved(KMouseEvent& event);
    virtual KEventReturn doMouseOther(KMouseEvent& event);
    virtual KEventReturn doMouseUp(KMouseEvent& event);
    // Paints on the window's device; non-zero ends the window's paint.
    virtual KEventReturn doPaint(KWindowEvent& event);
};
