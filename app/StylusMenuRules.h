#pragma once

#include "app/StylusModes.h"
#include "kernel/KString.h"
#include "tape/TapeForward.h"
#include "windowing/KWindowingForward.h"

class StylusActions;
class StylusWindow;

// What the menus look at when they open: the main window, its tape and
// modes, the actions, and whether a modal dialog is up.
struct MenuState {
    StylusWindow* window = nullptr;
    Tape* tape = nullptr;
    StylusActions* actions = nullptr;
    WindowMode mode = WindowMode::None;
    bool modal = false;
    // The tape plays or is paused.
    bool playing = false;
    bool actorEditing = false;
    // A text is being typed in place.
    bool textOpen = false;

    static MenuState now();
    int32_t elements() const;
    int32_t position() const;
};

// The title with the ellipsis that marks an item which opens a dialog.
KString withEllipsis(const KString& title);

// The start of every menu's doOpen: false when the menu has nothing more
// to do (no main window, or a modal dialog is up, when the whole menu
// goes off).
bool beginMenuOpen(KMenu& menu, const MenuState& state);

// The start of every menu's doMenuItem: false while a drag holds the
// mouse or a modal dialog is up.
bool mayRunMenuItem();

// "Save" or "Save "NAME"", for the project's File item and the actor's.
KString saveTitle(const MenuState& state);
