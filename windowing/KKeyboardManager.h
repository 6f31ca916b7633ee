#pragma once

#include "kernel/KThingPtr.h"
#include "windowing/KWindowingForward.h"

#include <vector>

// Routes the key events and owns the keyboard focus. A key goes to the
// handlers first, then to the focus element, then (Tab moving the focus,
// Return and Escape pressing a dialog's default and cancel buttons) to the
// target window and last to the application. A new instance replaces the
// previous one.
class KKeyboardManager : public KThing {
    K_DECLARE_CLASS(KKeyboardManager)
public:
    KKeyboardManager();
    ~KKeyboardManager() override;

    static KKeyboardManager* current();

    KEventReturn doKeyDown(KKeyEvent& event);
    KEventReturn doKeyUp(KKeyEvent& event);
    KEventReturn doKeyRepeat(KKeyEvent& event);

    // Objects offered every key before anything else; each one once.
    bool addHandler(KThing& handler);
    bool removeHandler(KThing& handler);

    void setFocus(KInteractiveElement& element, bool byKey = false);
    void clearFocus();
    KInteractiveElement* getFocus() const;
    bool hasFocus() const { return static_cast<bool>(focus); }
    // Moves the focus to the next (or previous) control of the window that
    // takes the focus by key; false when there is none.
    bool moveFocus(KWindow& window, bool backwards);

    // A closing or deactivated window loses the focus it held.
    void windowClosed(KWindow& window);
    // Drops the focus and the handlers, at shut-down.
    void release();

private:
    using ElementHandler = KEventReturn (KInteractiveElement::*)(KKeyEvent&);
    using WindowHandler = KEventReturn (KWindow::*)(KKeyEvent&);
    KEventReturn offerToHandlers(KKeyEvent& event);
    KWindow* targetWindow(KKeyEvent& event) const;
    KEventReturn dialogKey(KWindow& window, KKeyEvent& event);
    KEventReturn routeOther(KKeyEvent& event, ElementHandler element, WindowHandler window);

    std::vector<KThingPtr> handlers;
    KInteractiveElementPtr focus;
};
