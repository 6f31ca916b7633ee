#include "app/EditMenu.h"

#include "app/ItemsMenu.h"
#include "app/StylusActions.h"
#include "app/StylusClipboard.h"
#include "app/StylusMenuBar.h"
#include "app/StylusMenuRules.h"
#include "app/StylusWindow.h"
#include "app/ToolPalette.h"
#include "app/UiText.h"
#include "app/UndoHistory.h"
#include "kernel/KClass.h"
#include "tape/Tape.h"
#include "tape/TapeObject.h"
#include "windowing/KEditFieldControl.h"
#include "windowing/KMenuEvent.h"

K_DEFINE_CLASS(EditMenu, KMenu)

EditMenu::EditMenu()
    : KMenu(uiText("Edit"))
    , items(kAdopt(new ItemsMenu()))
{
    addItem(Undo, uiText("Undo"), 'Z');
    // Control+Shift+Z, which the window takes: a menu accelerator has
    // Control alone.
    addItem(Redo, uiText("Redo"));
    addSeparator();
    addItem(Cut, uiText("Cut"), 'X');
    addItem(Copy, uiText("Copy"), 'C');
    addItem(Paste, uiText("Paste"), 'V');
    addItem(Clear, uiText("Clear"));
    addSeparator();
    addSubMenu(uiText("Toolbox"), getItemsMenu());
    addItem(Modify, uiText("Modify"), 'E');
    addItem(SetBookmark, uiText("Set Bookmark"), '3');
    addSeparator();
    addItem(CopySpecial, uiText("Copy Special"), '4');
    addItem(PasteSpecial, uiText("Paste Special"), '5');
    addSeparator();
    addItem(SetVoiceSpecial, uiText("Set Voice Special"));
    addSeparator();
    addItem(NavigationTool, uiText("Show Navigation Tool"), 'L');
    addItem(Preferences, uiText("Preferences"), 'K');
    addSeparator();
    addItem(PaletteSize, uiText("Full Palette"), 'F');
}

EditMenu::~EditMenu() = default;

ItemsMenu& EditMenu::getItemsMenu() const { return *static_cast<ItemsMenu*>(items.get()); }

KString EditMenu::modifyTitle(int32_t kind)
{
    switch (kind) {
    case WaitType:
        return uiText("Modify Wait");
    case StrokeType:
        return uiText("Modify Color");
    case TextType:
        return uiText("Modify Text");
    case SpeechType:
        return uiText("Modify Speech");
    case PauseType:
        return uiText("Modify Pause");
    case SoundType:
        return uiText("Modify Sound");
    case PageTransitionType:
        return uiText("Modify Page Transition");
    case RelayMacroType:
        return uiText("Modify Relay Macro");
    case MovieType:
        return uiText("Modify Movie");
    case ImageType:
        return uiText("Modify Image");
    default:
        return uiText("Modify");
    }
}

// While a text is typed, the clipboard items work on its text; otherwise
// on the elements of the tape. Undo and redo go through the tape's
// history. The dialogs no part of the program supplies stay off.
KEventReturn EditMenu::doOpen(KMenuEvent&)
{
    MenuState state = MenuState::now();
    if (!beginMenuOpen(*this, state))
        return 1;
    StylusMenuBar* bar = StylusMenuBar::current();
    const StylusMenuBar::Hooks* hooks = bar ? &bar->hooks() : nullptr;

    TapeObject* current = state.tape && state.position() > 0 ? state.tape->getCurrentElement() : nullptr;
    int32_t kind = current ? current->getType() : 0;
    setItemTitle(Modify, modifyTitle(kind));
    KString bookmark = current ? current->getBookmark() : KString();
    setItemTitle(SetBookmark, bookmark.isEmpty() ? uiText("Set Bookmark") : uiText("Edit Bookmark '%1'", bookmark));
    StylusClipboard* clipboard = StylusClipboard::current();
    UndoHistory* history = UndoHistory::current();
    setItemTitle(Undo, history ? history->undoTitle(state.tape) : uiText("Can't Undo"));
    setItemTitle(Redo, history ? history->redoTitle(state.tape) : uiText("Can't Redo"));
    bool text = state.textOpen;
    setItemTitle(Cut, text ? uiText("Cut Text") : uiText("Cut"));
    setItemTitle(Copy, text ? uiText("Copy Text") : uiText("Copy"));
    setItemTitle(Paste, text ? uiText("Paste Text") : uiText("Paste"));
    setItemTitle(Clear, text ? uiText("Clear Text") : uiText("Clear"));
    ToolPalette* palette = ToolPalette::current();
    setItemTitle(PaletteSize, palette && palette->isFull() ? uiText("Short Palette") : uiText("Full Palette"));
    bool navigationShown = hooks && hooks->navigationShown && hooks->navigationShown();
    setItemTitle(NavigationTool, navigationShown ? uiText("Hide Navigation Tool") : uiText("Show Navigation Tool"));

    enableAllItems(false);
    if (state.playing)
        return 1;
    getItemsMenu().setEnabled(true);
    bool elements = clipboard && !text && !state.window->isEditing();
    for (int32_t item : { Cut, Copy, Clear })
        enableItem(item, text || (elements && clipboard->canCopy()));
    enableItem(Paste, text || (elements && clipboard->canPaste()));
    bool steps = history && !text && !state.window->isEditing();
    enableItem(Undo, steps && history->canUndo(state.tape));
    enableItem(Redo, steps && history->canRedo(state.tape));
    bool idle = state.tape != nullptr;
    enableItem(Modify, idle && kind >= WaitType && kind <= ImageType && kind != RelayMacroType);
    enableItem(SetBookmark, idle && state.position() > 0 && hooks && hooks->editBookmark);
    // The tool walks the story's tape: while an actor is edited it can be
    // hidden, not shown.
    enableItem(NavigationTool, hooks && hooks->toggleNavigation && (navigationShown || !state.actorEditing));
    enableItem(Preferences, hooks && hooks->preferences);
    enableItem(PaletteSize, palette != nullptr);
    for (const KMenuItemPtr& item : getItems()) {
        if (item->getSubMenu())
            item->setEnabled(true);
    }
    return 1;
}

void EditMenu::runOnElements(StylusClipboard& clipboard, int32_t item)
{
    KPtr<StylusClipboard> held(&clipboard);
    switch (item) {
    case Cut:
        clipboard.cut();
        break;
    case Copy:
        clipboard.copy();
        break;
    case Paste:
        clipboard.paste();
        break;
    default:
        clipboard.clear();
        break;
    }
}

KEventReturn EditMenu::doMenuItem(KMenuEvent& event)
{
    MenuState state = MenuState::now();
    if (!mayRunMenuItem() || !state.window)
        return 0;
    KPtr<StylusWindow> window(state.window);
    StylusMenuBar* bar = StylusMenuBar::current();
    KEditFieldControl* field = state.textOpen ? state.window->getEditField() : nullptr;
    switch (event.getItemId()) {
    case Cut:
    case Copy:
    case Paste:
    case Clear: {
        static constexpr KNativeTextEdit kEdits[]
            = { KNativeTextEdit::Cut, KNativeTextEdit::Copy, KNativeTextEdit::Paste, KNativeTextEdit::Clear };
        if (field)
            field->editText(kEdits[event.getItemId() - Cut]);
        else if (StylusClipboard* clipboard = StylusClipboard::current())
            runOnElements(*clipboard, event.getItemId());
        return 1;
    }
    case Undo:
    case Redo:
        if (StylusActions* actions = StylusActions::current(); actions && !field)
            actions->undoOrRedo(event.getItemId() == Redo);
        return 1;
    case Modify:
        if (state.tape && !state.playing) {
            window->stopEditing();
            StylusActions::modifyElementOf(*state.tape);
        }
        return 1;
    case SetBookmark:
        if (bar && bar->hooks().editBookmark)
            bar->hooks().editBookmark();
        return 1;
    case NavigationTool:
        if (bar && bar->hooks().toggleNavigation)
            bar->hooks().toggleNavigation();
        return 1;
    case Preferences:
        if (bar && bar->hooks().preferences)
            bar->hooks().preferences();
        return 1;
    case PaletteSize:
        if (ToolPalette* palette = ToolPalette::current())
            palette->swapPaletteState();
        return 1;
    default:
        return 0;
    }
}
