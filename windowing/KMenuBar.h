#pragma once

#include "kernel/KString.h"
#include "kernel/KThing.h"
#include "kernel/KThingPtr.h"
#include "windowing/KEvent.h"
#include "windowing/KNativeTypes.h"
#include "windowing/KWindowingForward.h"

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

// The strip of menus at the top of a window. Installing it gives every
// menu, sub-menu and item a command number and hands the tree to the
// native layer; `refresh` shows the items' present titles, ticks and
// enabling. The native side tells a menu about to open (its command), an
// item chosen (its command) and an accelerator typed (its key); the menu
// manager brings those here.
//
// An accelerator is looked up after every menu has run its `doOpen`, so
// the enabling rules are those of the moment. Several items may share a
// key: the first enabled one takes it. A key that belongs to the bar is
// always taken, even when none of its items is enabled, and also while the
// bar is hidden.
class KMenuBar : public KThing {
    K_DECLARE_CLASS(KMenuBar)
public:
    // The numbers of the help menu's items.
    enum HelpItem : int32_t { KeyboardSummary = 1000, About = 1001 };

    KMenuBar();
    ~KMenuBar() override;

    void addMenu(KMenu& menu);
    // The last menu: "Keyboard Commands Summary" (which the application's
    // doHelp gets, with the item's number) and the about item (doAbout).
    KMenu& addHelpMenu(const KString& aboutTitle);
    const std::vector<KMenuPtr>& getMenus() const { return menus; }
    KMenu* getHelpMenu() const;

    // --- The native bar --------------------------------------------------------
    void install(KWindow& window);
    void uninstall();
    bool isInstalled() const { return window != nullptr; }
    void refresh();
    void setShown(bool shown);
    bool isShown() const { return shown; }
    // Off while a modal dialog is up: every item greyed, no accelerator.
    void setMenusEnabled(bool on);
    bool areMenusEnabled() const { return menusEnabled; }
    // The tree as the native side gets it; the top entries are the menus.
    std::vector<KNativeMenuItem> nativeMenus() const;

    // --- What the user did -----------------------------------------------------
    // The menu of that command and its sub-menus bring their items up to
    // date; false when no menu has the number.
    bool openMenu(int32_t command);
    // Every menu brings its items up to date.
    void openAll();
    // Runs the item of that command when it may be chosen now; 0 when it is
    // no item or may not be chosen.
    KEventReturn chooseCommand(int32_t command);
    // 1 when the key belongs to the bar (whether or not an item ran).
    KEventReturn doAccelerator(int32_t key);
    // The item may be chosen now: the bar, its menu and the sub-menu titles
    // above it are all enabled.
    bool isLive(const KMenu& menu, const KMenuItem& item) const;
    // The menu and the item of a command number.
    bool findCommand(int32_t command, KMenu*& menu, KMenuItem*& item) const;

private:
    void number(KMenu& menu, int32_t& next);
    void openTree(KMenu& menu);
    KNativeMenuItem nativeOf(const KMenu& menu, const KMenuItem& item, bool live) const;
    KEventReturn choose(KMenu& menu, KMenuItem& item);

    std::vector<KMenuPtr> menus;
    std::vector<int32_t> menuCommands;
    // Each sub-menu's menu and title item.
    std::map<const KMenu*, std::pair<KMenu*, KMenuItem*>> parents;
    KMenuPtr helpMenu;
    KWindow* window = nullptr;
    bool shown = true;
    bool menusEnabled = true;
};
