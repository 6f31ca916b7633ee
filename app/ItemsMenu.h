#pragma once

#include "windowing/KMenu.h"

// "Toolbox": inserts an element of a kind at the position. Each item's
// enabling is the actions' canInsertElement, which the tool palette
// follows too.
class ItemsMenu : public KMenu {
    K_DECLARE_CLASS(ItemsMenu)
public:
    ItemsMenu();
    // The element kind of an item, 0 for none.
    static int32_t kindOf(int32_t item);
    KEventReturn doOpen(KMenuEvent& event) override;
    KEventReturn doMenuItem(KMenuEvent& event) override;
};
