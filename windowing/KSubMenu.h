#pragma once

#include "windowing/KMenu.h"

// A sub-menu whose items its owner menu enables and carries out: the owner
// sets the sub-menu's items in its own `doOpen`, and a choice here reaches
// the owner's `doMenuItem` with the sub-menu's item number. The owner holds
// its sub-menus, so a sub-menu never outlives it.
class KSubMenu : public KMenu {
public:
    KSubMenu(KMenu& owner, const KString& title)
        : KMenu(title)
        , owner(&owner)
    {
    }
    KEventReturn doOpen(KMenuEvent&) override { return 1; }
    KEventReturn doMenuItem(KMenuEvent& event) override { return owner->doMenuItem(event); }

private:
    KMenu* owner;
};
