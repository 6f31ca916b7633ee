#pragma once

#include "kernel/KThing.h"
#include "kernel/KThingPtr.h"
#include "windowing/KEvent.h"
#include "windowing/KWindowingForward.h"

// Keeps the program's menu bar and brings the native side's menu events
// to it: a menu about to open, an item chosen, an accelerator typed. While
// a modal dialog is up the bar's items are all off. A new instance
// replaces the previous one.
class KMenuManager : public KThing {
    K_DECLARE_CLASS(KMenuManager)
public:
    KMenuManager();
    ~KMenuManager() override;

    static KMenuManager* current();

    // The bar keeps the present state of the modal switch.
    void setMenuBar(KMenuBar* bar);
    KMenuBar* getMenuBar() const;
    void enableMenus(bool enabled);
    bool areMenusEnabled() const { return menusEnabled; }

    // A menu event's part of the route before the application: 0 when the
    // bar knows nothing of it.
    KEventReturn route(KMenuEvent& event);

private:
    KThingPtr menuBar;
    bool menusEnabled = true;
};
