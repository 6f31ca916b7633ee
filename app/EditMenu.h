#pragma once

#include "windowing/KMenu.h"

class ItemsMenu;
class StylusClipboard;

// "Edit": undo and redo, the clipboard (the text being typed while one is open),
// the Toolbox, modifying the element before the position, bookmarks, the
// special copy and paste, the navigation tool, the preferences and the
// palette's size.
class EditMenu : public KMenu {
    K_DECLARE_CLASS(EditMenu)
public:
    enum Item : int32_t {
        Undo = 1,
        Cut = 2,
        Copy = 3,
        Paste = 4,
        Clear = 5,
        Modify = 6,
        SetBookmark = 7,
        CopySpecial = 8,
        PasteSpecial = 9,
        SetVoiceSpecial = 10,
        NavigationTool = 11,
        Preferences = 12,
        PaletteSize = 13,
        Redo = 14,
    };

    EditMenu();
    ~EditMenu() override;
    ItemsMenu& getItemsMenu() const;
    // "Modify Image" and its like, for the kind of the element before the
    // position; "Modify" for no element or a kind without an editor.
    static KString modifyTitle(int32_t kind);

    KEventReturn doOpen(KMenuEvent& event) override;
    KEventReturn doMenuItem(KMenuEvent& event) override;

private:
    static void runOnElements(StylusClipboard& clipboard, int32_t item);

    KThingPtr items;
};
