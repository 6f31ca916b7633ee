#pragma once

#include "windowing/KEvent.h"
#include "windowing/KInteractiveElement.h"
#include "windowing/KLayer.h"

// A point of a mouse event, in window (local) or screen (global) terms.
struct KEventPoint {
    int32_t x = 0;
    int32_t y = 0;
};

class KMouseEvent : public KEvent {
    K_DECLARE_CLASS(KMouseEvent)
public:
    enum Type : int32_t { Enter = 0, Leave = 1, Down = 2, Moved = 3, Other = 4, Up = 5 };
    enum Button : int32_t { NoButton = 0, Left = 1, Right = 2 };
    enum ClickFlag : int32_t { DoubleClick = 1, SamePosition = 2 };

    KMouseEvent();
    KMouseEvent(int32_t type, KWindow* window);

    KWindow* getWindow() const { return window.get(); }
    void setWindow(KWindow* value) { window = value; }
    const KEventPoint& getLocal() const { return local; }
    void setLocal(KEventPoint point) { local = point; }
    const KEventPoint& getGlobal() const { return global; }
    void setGlobal(KEventPoint point) { global = point; }
    int32_t getButton() const { return button; }
    void setButton(int32_t value) { button = value; }
    bool isButtonDown() const { return buttonDown; }
    void setButtonDown(bool value) { buttonDown = value; }
    // 1 Shift, 2 Control, 4 Caps Lock, 8 Num Lock.
    int32_t getModifiers() const { return modifiers; }
    void setModifiers(int32_t value) { modifiers = value; }
    int32_t getClickFlags() const { return clickFlags; }
    void setClickFlags(int32_t value) { clickFlags = value; }
    bool isDoubleClick() const { return (clickFlags & DoubleClick) != 0; }
    // The layer an enter or leave concerns, and the element within it.
    KLayer* getLayer() const { return layer.get(); }
    void setLayer(KLayer* value) { layer = value; }
    KInteractiveElement* getElement() const { return element.get(); }
    void setElement(KInteractiveElement* value) { element = value; }

    // The route of the application's handlers, by type.
    KEventReturn processByApplication();

    KEventReturn process() override;

private:
    KWindowPtr window;
    KLayerPtr layer;
    KInteractiveElementPtr element;
    KEventPoint local;
    KEventPoint global;
    int32_t button = NoButton;
    bool buttonDown = false;
    int32_t modifiers = 0;
    int32_t clickFlags = 0;
};
