#pragma once

#include "graphics/KWidePoint.h"
#include "graphics/KWideRectangle.h"
#include "graphics/KWideSize.h"
#include "kernel/KSet.h"
#include "kernel/KString.h"
#include "kernel/KThingPtr.h"
#include "windowing/KWindowingForward.h"

// Anything that lies in a window, can be shown and hidden and reacts to
// mouse and keys. Its window and layer are plain back references: the
// window holds its layers and the layers their elements, never the reverse.
class KInteractiveElement : public KThing {
    K_DECLARE_CLASS(KInteractiveElement)
public:
    enum ElementFlag : int32_t {
        HasFocus = 1,
        InFocusChain = 2,
        FocusByMouse = 4,
        SkipOnTab = 8,
        FocusByKey = 512,
        Visible = 1024,
        RedrawOnIdChange = 4096,
        DrawWhenShown = 8192,
    };
    static constexpr int32_t kDefaultFlags = 127876;
    // How doFocusChange learns what happened.
    enum FocusChange : int32_t { FocusLost = 0, FocusByMouseClick = 1, FocusByKeyboard = 2 };
    // The feature of the enabled set that stands for "enabled" as a whole.
    static constexpr int32_t kEnabledFeature = 1;

    KInteractiveElement();
    ~KInteractiveElement() override;

    virtual void setLayer(KLayer* layer);
    virtual void resetLayer();
    virtual void setWindow(KWindow* window);
    virtual void resetWindow();
    virtual void setId(int32_t value);
    virtual void setName(const KString& value);
    virtual void setPosition(const KWidePoint& point);
    virtual void setSize(const KWideSize& value);
    virtual void setEnabled(bool enabled);
    virtual void setVisible(bool visible);
    virtual void show();
    virtual void hide();
    // The point is in the coordinates the position is given in.
    virtual bool contains(const KWidePoint& point) const;
    virtual KEventReturn doAction(KActionEvent& event);
    virtual KEventReturn doKeyDown(KKeyEvent& event);
    virtual KEventReturn doKeyUp(KKeyEvent& event);
    virtual KEventReturn doKeyRepeat(KKeyEvent& event);
    virtual bool doIdleTest();
    // Taking the focus by a key (Tab) follows other flags than by a click.
    virtual void setFocus(bool on, bool byKey = false);
    virtual void doFocusChange(int32_t change);
    // Asks for the element to be shown again (through the window).
    virtual void draw();
    // Draws into the window's device at once.
    virtual void drawNow();
    virtual void doUpdate();
    virtual KWideRectangle getBounds() const;

    KWindow* getWindow() const { return window; }
    KLayer* getLayer() const { return layer; }
    const KString& getName() const { return name; }
    const KWidePoint& getPosition() const { return position; }
    const KWideSize& getSize() const { return size; }
    int32_t getId() const { return id; }
    int32_t getKind() const { return kind; }
    void setKind(int32_t value) { kind = value; }

    int32_t getElementFlags() const { return elementFlags; }
    void setElementFlags(int32_t value) { elementFlags = value; }
    bool hasElementFlag(int32_t flag) const { return (elementFlags & flag) != 0; }
    void setElementFlag(int32_t flag, bool on);

    bool isEnabled() const { return features.has(kEnabledFeature); }
    bool isVisible() const { return hasElementFlag(Visible); }
    bool hasFocus() const { return hasElementFlag(HasFocus); }
    KSet& getFeatures() { return features; }

    static int32_t liveElements();

protected:
    // What the element paints on its window's device; drawNow calls it.
    virtual void paintOn(KWindow& target);

private:
    KWindow* window = nullptr;
    KLayer* layer = nullptr;
    KString name;
    KWidePoint position;
    KWideSize size;
    int32_t id = 0;
    int32_t kind = 0;
    int32_t elementFlags = kDefaultFlags;
    KSet features;
};
