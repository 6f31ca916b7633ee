#pragma once

#include "graphics/KAlphaImage.h"
#include "windowing/KControl.h"

// A control that draws a picture stretched over its rectangle, and the
// picture's pushed form while the mouse holds it down. A disabled control
// shows its picture faded; the control with the keyboard focus a ring.
//
// It tells its window what the mouse does as control actions: Pressed when
// a button goes down on it, Dragged for every move while it is held and
// Released when the button comes up over it. Where the press happened, with
// which button and keys, and where the mouse is now stay readable on the
// control, so that a window can measure a drag or tell a Control-press.
class KImageControl : public KControl {
    K_DECLARE_CLASS(KImageControl)
public:
    enum ImageAction : int32_t { Released = 1, Dragged = 2, Pressed = 4 };

    KImageControl();
    KImageControl(int32_t id, const KWideRectangle& bounds);
    ~KImageControl() override;

    // Without a pushed form the picture stays as it is while held.
    void setPicture(KAlphaImage* picture, KAlphaImage* pushed = nullptr);
    KAlphaImage* getPicture() const { return picture.get(); }
    KAlphaImage* getPushedPicture() const { return pushedPicture.get(); }
    bool isPushed() const { return pushed; }
    // The picture changed in place: show it again.
    void pictureChanged() { draw(); }

    // A control inside another one that lets the clicks through to it.
    void setClickThrough(bool value) { clickThrough = value; }
    bool isClickThrough() const { return clickThrough; }
    bool contains(const KWidePoint& point) const override;

    // The press that is (or was last) held, in window terms.
    const KWidePoint& getPressPoint() const { return pressPoint; }
    const KWidePoint& getDragPoint() const { return dragPoint; }
    int32_t getPressModifiers() const { return pressModifiers; }
    int32_t getPressButton() const { return pressButton; }
    bool isTracking() const { return tracking; }
    // What a press of Space or Return does: a press and a release at the
    // control's centre, with no keys held.
    void pressByKey();

    KEventReturn doMouseDown(KMouseEvent& event) override;
    KEventReturn doMouseMoved(KMouseEvent& event) override;
    KEventReturn doMouseUp(KMouseEvent& event) override;
    void setEnabled(bool enabled) override;
    void setFocus(bool on, bool byKey = false) override;
    const char* getKindName() const override { return "image"; }
    void describe(KJsonWriter& out) const override;

    // The ring drawn around the control with the keyboard focus.
    static constexpr int16_t kFocusRingWidth = 3;

protected:
    void paintOn(KWindow& target) override;
    // Draws the picture in its form of the moment over `bounds`.
    virtual void paintPicture(KWindow& target, const KWideRectangle& bounds);
    void setPushed(bool value);

private:
    void paintFocusRing(KWindow& target, const KWideRectangle& bounds);

    KAlphaImagePtr picture;
    KAlphaImagePtr pushedPicture;
    KWidePoint pressPoint;
    KWidePoint dragPoint;
    int32_t pressModifiers = 0;
    int32_t pressButton = 0;
    bool pushed = false;
    bool tracking = false;
    bool clickThrough = false;
};

using KImageControlPtr = KPtr<KImageControl>;
