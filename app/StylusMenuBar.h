#pragma once

#include "windowing/KMenuBar.h"

#include <functional>
#include <string>

class KJsonWriter;

class FileMenu;
class EditMenu;
class FormatMenu;
class AnimMenu;
class ActorsMenu;

// The program's menu bar: File, Edit (with the Toolbox), View, Format, Animate,
// Actors and Help. It shows on the main window, except while a story
// plays in full screen or with the tape's "hide menu bar" flag, and in
// full screen unless the user asked for it (Shift+M); its accelerators
// work all the same. A new instance replaces the previous one.
class StylusMenuBar : public KMenuBar {
    K_DECLARE_CLASS(StylusMenuBar)
public:
    // Commands whose windows other parts of the program supply; their
    // items stay off until these are set.
    struct Hooks {
        std::function<bool()> navigationShown;
        std::function<void()> toggleNavigation;
        std::function<void()> editBookmark;
        std::function<void()> animationSetup;
        std::function<void()> preferences;
    };

    StylusMenuBar();
    ~StylusMenuBar() override;
    static StylusMenuBar* current();
    Hooks& hooks() { return hookTable; }

    FileMenu& getFileMenu() const;
    EditMenu& getEditMenu() const;
    FormatMenu& getFormatMenu() const;
    AnimMenu& getAnimMenu() const;
    ActorsMenu& getActorsMenu() const;

    // Shows or hides the bar by the rule above.
    void updateShown();
    // Brings every item up to date, as if each menu had opened.
    void update();
    // "Keyboard Commands Summary": every item with an accelerator.
    KString keyboardSummary() const;
    // The model as it stands, one line an item, indented by sub-menu:
    // `ID "TITLE" Ctrl+KEY on|off [checked]`, a dash for a separator; a
    // menu's line is `TITLE on|off` (for the menu itself). "on" means the
    // item can be chosen now.
    std::string describeText() const;
    // The same as JSON: an array of menus, each with "title", "enabled" and
    // "items"; an item has "id", "title", "key" ("" or "Ctrl+S"),
    // "enabled", "checked" and, for a sub-menu, "items".
    void describe(KJsonWriter& out) const override;

private:
    Hooks hookTable;
};
