// Play and stop, the steps along the tape, and inserting elements.

#include "app/ActorEditor.h"
#include "app/ElementDialog.h"
#include "app/PlayerMode.h"
#include "app/ProjectFiles.h"
#include "app/StylusActions.h"
#include "app/StylusApplication.h"
#include "app/StylusClipboard.h"
#include "app/StylusMenuBar.h"
#include "app/StylusPreviews.h"
#include "app/StylusWindow.h"
#include "app/ToolPalette.h"
#include "app/UiText.h"
#include "app/UndoStep.h"
#include "app/actors/ActorAction.h"
#include "app/actors/ActorLoading.h"
#include "kernel/KDirectory.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "kmultimedia/KSoundSupport.h"
#include "kmultimedia/StylusSpriteSystem.h"
#include "project/StylusProject.h"
#include "tape/StylusPause.h"
#include "tape/StylusSound.h"
#include "tape/StylusSpeech.h"
#include "tape/StylusText.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/TapeMediaImport.h"
#include "tape/WaitObject.h"
#include "windowing/KAlert.h"
#include "windowing/KApplication.h"
#include "windowing/KDialogHandler.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KWindowManager.h"

#include <algorithm>

namespace {

StylusApplication* application() { return dynamic_cast<StylusApplication*>(KApplication::current()); }

} // namespace

void StylusActions::play(bool fromPosition, bool fullScreen, bool quitAfter)
{
    quitAfterPlay = quitAfter;
    StylusWindow* shown = window();
    Tape* played = shownTape();
    if (!shown || !played || played->getCount() == 0)
        return;
    WindowMode mode = shown->getWindowMode();
    if (mode == WindowMode::Paused) {
        // Play while paused goes on where it stopped.
        played->resumePlaying();
        shown->setWindowMode(WindowMode::Playing);
        return;
    }
    if (mode != WindowMode::TapeEditing)
        return;
    stopEditing();
    shown->hideBrush();
    StylusApplication* app = application();
    playEnteredFullScreen = false;
    if (fullScreen && app && !app->isFullScreen()) {
        app->setFullScreen(true);
        playEnteredFullScreen = true;
    }
    ToolPalette* palette = ToolPalette::current();
    bool hideTools = fullScreen || played->getFlags().test(Tape::HideTools);
    if (palette && hideTools)
        palette->show(false);
    int32_t start = fromPosition ? std::max(0, played->getPosition() - 1) : 0;
    if (StylusPreviews* previews = StylusPreviews::current())
        previews->setPaused(true);
    played->startPlaying(start);
    shown->enterPlayMode();
    updateMenuBar();
}

void StylusActions::stopPlay()
{
    StylusWindow* shown = window();
    Tape* played = shownTape();
    if (played)
        played->stopPlaying();
    if (shown) {
        shown->stopBlink();
        shown->stopPlayMode();
        shown->redrawPage(true);
    }
    ToolPalette* palette = PlayerMode::isOn() ? nullptr : ToolPalette::current();
    if (palette) {
        palette->show(true);
        palette->updateState(int32_t(WindowMode::TapeEditing));
    }
    StylusApplication* app = application();
    if (app && playEnteredFullScreen)
        app->setFullScreen(false);
    playEnteredFullScreen = false;
    if (shown)
        shown->updateBrushPosition();
    if (StylusPreviews* previews = StylusPreviews::current())
        previews->setPaused(false);
    updateMenuBar();
    if (quitAfterPlay) {
        quitAfterPlay = false;
        if (KApplication* running = KApplication::current())
            running->requestQuit();
    }
}

// --- Steps ------------------------------------------------------------------------------

void StylusActions::goBack()
{
    if (!shownTape() || !tapeIsIdle())
        return;
    stopEditing();
    shownTape()->stepBack();
}

void StylusActions::goForward()
{
    if (!shownTape() || !tapeIsIdle())
        return;
    stopEditing();
    shownTape()->stepForward();
}

void StylusActions::goToBeginning()
{
    if (!shownTape() || !tapeIsIdle())
        return;
    stopEditing();
    shownTape()->goToStart();
}

void StylusActions::goToEnd()
{
    if (!shownTape() || !tapeIsIdle())
        return;
    stopEditing();
    shownTape()->goToEnd();
}

void StylusActions::deleteLast()
{
    if (!shownTape() || !tapeIsIdle())
        return;
    finishPastePlacement(false);
    stopEditing();
    // Through the clipboard's clear, so that Control+Z brings it back; the
    // tape's own removal answers an empty place with a beep.
    StylusClipboard* clipboard = StylusClipboard::current();
    {
        UndoStep step(shownTape(), UndoHistory::Name::Delete);
        if (clipboard && shownTape()->getPosition() > 0)
            clipboard->clear();
        else
            shownTape()->removeCurrentElement();
    }
    if (StylusWindow* shown = window())
        shown->redrawPage(true);
    tellChanged();
}

void StylusActions::undoOrRedo(bool redo)
{
    UndoHistory* history = UndoHistory::current();
    Tape* tape = shownTape();
    if (!history || !tape || !tapeIsIdle())
        return;
    finishPastePlacement(false);
    // Typing still open becomes a step of its own first.
    stopEditing();
    if (redo ? !history->canRedo(tape) : !history->canUndo(tape)) {
        TapeHost::get().beep();
        return;
    }
    if (redo)
        history->redo(*tape);
    else
        history->undo(*tape);
    tellChanged();
}

// The palette goes to the band above or below the page, whichever it is
// not in now.
void StylusActions::moveToolPalette()
{
    ToolPalette* palette = ToolPalette::current();
    StylusWindow* shown = window();
    if (!palette || !shown)
        return;
    int32_t screenWidth = 0;
    int32_t screenHeight = 0;
    KNativeLayer::get().screenSize(screenWidth, screenHeight);
    KGraphicRectangle frame = palette->getClientBounds();
    KGraphicRectangle page = shown->getPageRectangle();
    page.x = int16_t(page.x + shown->getClientBounds().x);
    page.y = int16_t(page.y + shown->getClientBounds().y);
    int32_t y = 0;
    if (frame.y - 32 <= screenHeight / 2) {
        y = std::max<int32_t>(32, (int32_t(page.y) - frame.height) / 2);
    } else {
        int32_t pageBottom = int32_t(page.y) + page.height;
        y = pageBottom + (screenHeight - pageBottom - frame.height) / 2;
        if (y + frame.height > screenHeight)
            y = screenHeight - frame.height;
    }
    int32_t x = int32_t(page.x) + (page.width - frame.width) / 2;
    palette->setClientBounds(
        KGraphicRectangle(int16_t(std::max(0, x)), int16_t(std::max(0, y)), frame.width, frame.height));
}

void StylusActions::modifyCurrentElement()
{
    if (!shownTape() || !tapeIsIdle())
        return;
    stopEditing();
    modifyElementOf(*shownTape());
}

// A stroke's colour changes where it stands; the other kinds' dialogs make
// their own step, which joins this one.
void StylusActions::modifyElementOf(Tape& tape)
{
    UndoStep step(&tape, UndoHistory::Name::Change);
    if (TapeObject* current = tape.hasCurrentElement() ? tape.getCurrentElement() : nullptr;
        current && current->getType() == StrokeType)
        step.willChange(*current);
    tape.editCurrentElement();
}

bool StylusActions::canInsertElement(int32_t kind) const
{
    StylusWindow* shown = window();
    KWindowManager* manager = KWindowManager::current();
    if (!shown || !shownTape() || !tapeIsIdle() || (manager && manager->getModalCount() > 0))
        return false;
    WindowMode mode = shown->getWindowMode();
    if (mode == WindowMode::ActorEditing && kind != TextType && kind != ImageType && kind != SoundType
        && kind != SpeechType)
        return false;
    if (mode != WindowMode::TapeEditing && mode != WindowMode::ActorEditing)
        return false;
    switch (kind) {
    case TextType:
        return shown->getEditMode() != EditMode::Text;
    case WaitType:
    case SpeechType:
    case PauseType:
    case SoundType:
    case ImageType:
    case MovieType:
    case PageTransitionType:
        return true;
    case ActorActionType:
        return mode == WindowMode::TapeEditing;
    default:
        return false;
    }
}

// A wait, a speech, a pause and a sound are made in their dialogs; a text
// is typed in place. Without a dialog the elements that need nothing from
// the user go in with their defaults, and a sound asks only for its file.
void StylusActions::insertElement(int32_t kind)
{
    if (!shownTape() || !tapeIsIdle() || kind < 1 || kind > ActorActionType || kind == StrokeType
        || kind == RelayMacroType)
        return;
    stopEditing();
    if (kind == ActorActionType) {
        insertActorAction();
        return;
    }
    if (hookTable.insertWithDialog) {
        hookTable.insertWithDialog(*shownTape(), kind);
        return;
    }
    if (ElementDialog::createsKind(kind)) {
        insertThroughDialog(kind);
        return;
    }
    TapeObjectPtr element;
    switch (kind) {
    case WaitType:
        element = kAdopt(new WaitObject());
        break;
    case SpeechType:
        element = kAdopt(new StylusSpeech());
        break;
    case PauseType:
        element = kAdopt(new StylusPause());
        break;
    case SoundType:
        element = askSoundElement();
        if (!element)
            return;
        break;
    case TextType:
        insertNewText();
        return;
    default:
        TapeHost::get().beep();
        return;
    }
    addInserted(*element);
}

// A new text stands in the middle of the page with its defaults, and the
// user types over it in place.
void StylusActions::insertNewText()
{
    StylusTextPtr text(new StylusText());
    takeTextDefaults(*text);
    KGraphicSize pageSize = shownTape()->getPageSize();
    if (pageSize.width <= 0 || pageSize.height <= 0)
        pageSize = TapeHost::get().newDocumentPageSize();
    text->placeCentred(pageSize);
    addInserted(*text);
    startEditingNewText(*text);
}

// The user types over the new text at once, all of it selected.
void StylusActions::startEditingNewText(StylusText& text)
{
    if (StylusWindow* shown = window())
        shown->startEditText(text);
}

// The style, background and alignment chosen last in the text format menu.
void StylusActions::takeTextDefaults(StylusText& text)
{
    StylusApplication* application = StylusApplication::current();
    if (!application)
        return;
    const TextDefaults& defaults = application->getTextDefaults();
    text.setTextBlock(defaults.makeBlock(text.getPlainText()));
    text.setBackColour(defaults.getBackColour());
}

// An actor's entrance, move or jump is placed on the page at once, where
// the user drags the actor to its place.
void StylusActions::insertActorAction()
{
    KDirectory* actors = project ? project->getActorsDirectory() : nullptr;
    if (!actors || ActorEditor::actorNamesIn(*actors).empty()) {
        alert(uiText("Actor"), uiText("No Actor In Project"));
        return;
    }
    Tape& tape = *shownTape();
    int32_t before = tape.getCount();
    insertThroughDialog(ActorActionType);
    if (tape.getCount() != before + 1 || tape.getPosition() < 1)
        return;
    auto* action = dynamic_cast<ActorAction*>(tape.getAt(tape.getPosition() - 1));
    StylusWindow* shown = window();
    if (!action || !shown)
        return;
    loadTapeActors(tape, *actors);
    shown->redrawPage(true);
    int32_t kind = action->getAction();
    if (kind == ActorAction::EnterOnScene || kind == ActorAction::MoveResize || kind == ActorAction::JumpToPosition)
        shown->startEditActorPosition(*action);
}

// The brush would stand over the page while the dialog is up.
void StylusActions::insertThroughDialog(int32_t kind)
{
    StylusWindow* shown = window();
    if (shown)
        shown->hideBrush();
    ElementDialog::create(*shownTape(), kind);
    if (StylusWindow* after = window())
        after->updateBrushPosition();
}

void StylusActions::addInserted(TapeObject& element)
{
    {
        UndoStep step(shownTape(), UndoHistory::Name::Insert);
        shownTape()->addElement(element);
    }
    if (StylusWindow* shown = window())
        shown->redrawPage(false);
    elementAdded();
}

// The file goes into the project's media folder, as every media file does;
// a file that is not a sound is refused with a beep.
TapeObjectPtr StylusActions::askSoundElement()
{
    KDialogHandler* dialogs = KDialogHandler::current();
    if (!dialogs) {
        TapeHost::get().beep();
        return TapeObjectPtr();
    }
    KFileReference chosen(documentsFolder().getPath().getChildFile(KString("x")));
    StylusWindow* shown = window();
    if (shown)
        shown->hideBrush();
    bool picked = dialogs->doOpenDialog(chosen, uiText("Insert Sound"), KFileTypeID(0));
    if (shown)
        shown->updateBrushPosition();
    if (!picked)
        return TapeObjectPtr();
    if (!KSoundSupport::isSoundExtension(chosen.getPath().getExtension().c_str())) {
        TapeHost::get().beep();
        return TapeObjectPtr();
    }
    KFileReference file = chosen;
    if (KDirectory* media = tape()->getMediaDirectory()) {
        if (!importMediaFile(chosen, *media, file)) {
            TapeHost::get().beep();
            return TapeObjectPtr();
        }
    }
    StylusSoundPtr sound(new StylusSound());
    sound->setFile(file);
    return sound;
}

void StylusActions::elementAdded() { tellChanged(); }

void StylusActions::finishPastePlacement(bool) { }

void StylusActions::toggleMenuStrip()
{
    menuStripShown = !menuStripShown;
    updateMenuBar();
}

void StylusActions::updateMenuBar()
{
    if (StylusMenuBar* bar = StylusMenuBar::current()) {
        bar->updateShown();
        bar->update();
    }
}
