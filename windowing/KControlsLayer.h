#pragma once

#include "graphics/KGraphicPoint.h"
#include "windowing/KLayer.h"

#include <vector>

// The layer of a window's controls. It tracks the control under the mouse
// (the hover control, with its hover hint) and the control a press went to
// (the pressed control, which gets the moves and the release). It holds
// the points it is offered only where a control lies, so the layers below
// get the rest.
class KControlsLayer : public KLayer {
    K_DECLARE_CLASS(KControlsLayer)
public:
    KControlsLayer();
    ~KControlsLayer() override;

    // The deepest enabled, visible control at the point (client terms);
    // error 18 when there is none.
    KControl* getControl(const KGraphicPoint& point) const;
    // The same without the error.
    KControl* findControl(const KGraphicPoint& point) const;
    // The control with the id, searched through the whole tree; null when
    // there is none.
    KControl* getControl(int32_t id) const;
    bool hasControl(const KControl& control) const;
    void addControl(KControl& control);
    void removeControl(KControl& control);
    const std::vector<KControlPtr>& getControls() const { return controls; }
    // The control whose native widget has the tag.
    KControl* findByNativeTag(int32_t tag) const;

    void setHover(KControl* control);
    void clearHover();
    KControl* getHover() const;
    void setPressed(KControl& control);
    void clearPressed();
    KControl* getPressed() const;
    void updateHover(const KGraphicPoint& point);

    void setWindow(KWindow* window) override;
    void resetWindow() override;
    bool contains(const KWidePoint& point) const override;
    void createNativeParts() override;
    void removeNativeParts() override;
    KEventReturn doMouseEnter(KMouseEvent& event) override;
    KEventReturn doMouseLeave(KMouseEvent& event) override;
    KEventReturn doMouseDown(KMouseEvent& event) override;
    KEventReturn doMouseMoved(KMouseEvent& event) override;
    KEventReturn doMouseOther(KMouseEvent& event) override;
    KEventReturn doMouseUp(KMouseEvent& event) override;
    KEventReturn doPaint(KWindowEvent& event) override;

private:
    using MouseHandler = KEventReturn (KControl::*)(KMouseEvent&);
    // Offers the event to the control and then its parents while they
    // answer 0; `answered` is the one that did not.
    static KEventReturn offerUpwards(KControl* control, KMouseEvent& event, MouseHandler handler,
                                     KControl** answered = nullptr);
    void sendHoverEvent(int32_t type, KControl& control);
    bool isOwnControl(const KInteractiveElement* element) const;

    std::vector<KControlPtr> controls;
    KControlPtr hover;
    KControlPtr pressed;
    bool tooltipShown = false;
};
