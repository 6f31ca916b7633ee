#pragma once

#include "windowing/KInteractiveElement.h"
#include "windowing/KNativeTypes.h"

#include <vector>

// An element of a window's controls layer. A control may hold child
// controls, whose positions are in their parent's terms; a top-level
// control's position is in window terms. A control with a native form
// (a button, a static text) is a widget of the native side placed at its
// pixel position over the window; the others draw themselves.
class KControl : public KInteractiveElement {
    K_DECLARE_CLASS(KControl)
public:
    KControl();
    ~KControl() override;

    void setWindow(KWindow* window) override;
    void resetWindow() override;
    void setLayer(KLayer* layer) override;
    void resetLayer() override;
    void setPosition(const KWidePoint& point) override;
    void setSize(const KWideSize& value) override;
    void setEnabled(bool enabled) override;
    void setVisible(bool visible) override;
    void hide() override;

    virtual void setText(const KString& text);
    // What kind of control this is, in the words of the state file
    // ("button", "checkBox", ...).
    virtual const char* getKindName() const;
    // The control for the state file: kind, id, text, bounds, enabled and
    // visible; each kind adds its value.
    void describe(KJsonWriter& out) const override;
    const KString& getText() const { return text; }
    void setTooltip(const KString& text) { tooltip = text; }
    const KString& getTooltip() const { return tooltip; }
    // Whether a press on the control keeps the mouse until the release.
    bool wantsCapture() const { return captureWanted; }
    void setWantsCapture(bool value) { captureWanted = value; }

    void addChild(KControl& child);
    void removeChild(KControl& child);
    const std::vector<KControlPtr>& getChildren() const { return children; }
    KControl* getParentControl() const { return parent; }
    KControl& getTopLevel();
    // The control's rectangle in its window's terms.
    KWideRectangle getWindowBounds() const;
    // The deepest enabled, visible child (or grandchild) that holds the
    // point, given in this control's own terms; null when none does.
    KControl* findChild(const KWidePoint& point) const;

    virtual KEventReturn doMouseEnter(KMouseEvent& event);
    virtual KEventReturn doMouseLeave(KMouseEvent& event);
    virtual KEventReturn doMouseDown(KMouseEvent& event);
    virtual KEventReturn doMouseMoved(KMouseEvent& event);
    virtual KEventReturn doMouseOther(KMouseEvent& event);
    virtual KEventReturn doMouseUp(KMouseEvent& event);
    virtual KEventReturn doControlAction(KControlActionEvent& event);
    // A notification of the control's native widget.
    virtual KEventReturn doNativeEvent(KNativeEvent& event);
    // Paints a drawn control (and its children) on the window's device.
    virtual void paint(KWindow& target);
    // A drawn control asks for its area to be shown again; a native
    // widget shows itself.
    void draw() override;

    // The native widget, made while the control is in an open window.
    void createNativePart();
    void removeNativePart();
    bool hasNativePart() const { return nativeControl != nullptr; }
    void* getNativeControl() const { return nativeControl; }
    // The number the native widget's notifications carry.
    int32_t getNativeTag() const { return nativeTag; }
    // The control of this tree whose native widget has the tag.
    KControl* findByNativeTag(int32_t tag);

protected:
    // Fills the native widget's description; false for a drawn control.
    virtual bool describeNative(KNativeControlSetup& setup) const;
    // Keeps a text the native widget already shows.
    void storeText(const KString& value) { text = value; }
    // The notification code of a native event, -1 when it carries none.
    static int32_t notificationOf(const KNativeEvent& event);
    // The control's action of the type, processed at once.
    KEventReturn sendAction(int32_t type);

private:
    void placeNative();

    KControl* parent = nullptr;
    std::vector<KControlPtr> children;
    KString text;
    KString tooltip;
    bool captureWanted = false;
    void* nativeControl = nullptr;
    int32_t nativeTag = 0;
};
