#pragma once

#include "kernel/KString.h"
#include "kernel/KThing.h"
#include "kernel/KThingPtr.h"
#include "windowing/KWindowingForward.h"

#include <cstdint>

// One line of a menu: a command with the menu's own number for it, a
// separator, or the title of a sub-menu. Its accelerator is a character
// (an upper-case letter or a digit) typed with Control; 0 is none. The
// command number is the menu bar's, given when the bar is installed, and
// names the item to the native side.
class KMenuItem : public KThing {
    K_DECLARE_CLASS(KMenuItem)
public:
    KMenuItem();
    KMenuItem(int32_t id, const KString& title, int32_t key);
    ~KMenuItem() override;

    static KMenuItemPtr makeSeparator();

    int32_t getId() const { return id; }
    const KString& getTitle() const { return title; }
    void setTitle(const KString& value) { title = value; }
    int32_t getKey() const { return key; }
    void setKey(int32_t value) { key = value; }
    bool isEnabled() const { return enabled; }
    void setEnabled(bool value) { enabled = value; }
    // A check item shows its tick; a radio item shows it round.
    bool isCheckable() const { return checkable; }
    void setCheckable(bool value, bool radio = false);
    bool isRadio() const { return radio; }
    bool isChecked() const { return checked; }
    void setChecked(bool value) { checked = value; }
    bool isSeparator() const { return separator; }
    KMenu* getSubMenu() const;
    void setSubMenu(KMenu* menu);
    int32_t getCommand() const { return command; }
    void setCommand(int32_t value) { command = value; }

private:
    int32_t id = 0;
    KString title;
    int32_t key = 0;
    bool enabled = true;
    bool checkable = false;
    bool radio = false;
    bool checked = false;
    bool separator = false;
    KThingPtr subMenu;
    int32_t command = 0;
};
