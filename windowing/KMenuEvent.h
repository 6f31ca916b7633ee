#pragma once

#include "windowing/KEvent.h"

// A menu opening or an item chosen. The menu objects ride along as plain
// references; their part of the route belongs to the menu classes.
class KMenuEvent : public KEvent {
    K_DECLARE_CLASS(KMenuEvent)
public:
    enum Type : int32_t {
        MenuOpen = 0,
        ItemChosen = 1,
        CustomItemDrawn = 2,
        AboutChosen = 3,
        HelpChosen = 4,
        MenuBarItem = 5,
        // A menu bar's accelerator was typed; the item number holds the key.
        Accelerator = 6,
    };

    KMenuEvent();
    explicit KMenuEvent(int32_t type);

    KThing* getMenuBar() const { return menuBar.get(); }
    void setMenuBar(KThing* value) { menuBar = value; }
    KThing* getMenu() const { return menu.get(); }
    void setMenu(KThing* value) { menu = value; }
    KThing* getItem() const { return item.get(); }
    void setItem(KThing* value) { item = value; }
    int32_t getItemId() const { return itemId; }
    void setItemId(int32_t value) { itemId = value; }

    KEventReturn process() override;
    // The application's handler of the event's type, without the menus.
    KEventReturn processByApplication();

private:
    KThingPtr menuBar;
    KThingPtr menu;
    KThingPtr item;
    int32_t itemId = 0;
};
