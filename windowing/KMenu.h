#pragma once

#include "kernel/KString.h"
#include "kernel/KThing.h"
#include "kernel/KThingPtr.h"
#include "windowing/KEvent.h"
#include "windowing/KMenuItem.h"
#include "windowing/KWindowingForward.h"

#include <cstdint>
#include <vector>

// A menu of a menu bar, or a sub-menu of one. A program's menu builds its
// items in its constructor, enables, ticks and renames them in `doOpen`
// (which runs each time it is about to be shown and before an accelerator
// is looked up), and carries out the item chosen in `doMenuItem`. Item
// numbers are the menu's own: two menus may use the same. A disabled menu
// shows every item greyed and chooses nothing, whatever the items say.
class KMenu : public KThing {
    K_DECLARE_CLASS(KMenu)
public:
    KMenu();
    explicit KMenu(const KString& title);
    ~KMenu() override;

    const KString& getTitle() const { return title; }
    void setTitle(const KString& value) { title = value; }
    bool isEnabled() const { return enabled; }
    void setEnabled(bool value) { enabled = value; }

    // --- Building ----------------------------------------------------------------
    KMenuItem& addItem(int32_t id, const KString& itemTitle, int32_t key = 0);
    void addSeparator();
    // The item that opens `menu`; it holds the menu.
    KMenuItem& addSubMenu(const KString& itemTitle, KMenu& menu);
    const std::vector<KMenuItemPtr>& getItems() const { return items; }
    // The sub-menus, in order.
    std::vector<KMenu*> getSubMenus() const;

    // --- Items by number (this menu's own items only) ------------------------------
    KMenuItem* findItem(int32_t id) const;
    bool hasItem(int32_t id) const { return findItem(id) != nullptr; }
    void enableItem(int32_t id, bool on);
    void checkItem(int32_t id, bool on);
    void setItemTitle(int32_t id, const KString& itemTitle);
    // Every command item, sub-menu titles included.
    void enableAllItems(bool on);
    // The item can be chosen now: the menu and the item are enabled.
    bool isItemLive(const KMenuItem& item) const { return enabled && item.isEnabled(); }

    // --- Events --------------------------------------------------------------------
    // The menu is about to be shown: bring the items up to date. 1 when done.
    virtual KEventReturn doOpen(KMenuEvent& event);
    // An item was chosen; the event names it. 0 leaves it to the application.
    virtual KEventReturn doMenuItem(KMenuEvent& event);

private:
    KString title;
    bool enabled = true;
    std::vector<KMenuItemPtr> items;
};
