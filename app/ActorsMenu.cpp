#include "app/ActorsMenu.h"

#include "app/ActorEditor.h"
#include "app/StylusMenuRules.h"
#include "app/UiText.h"
#include "kernel/KClass.h"
#include "windowing/KMenuEvent.h"
#include "windowing/KSubMenu.h"

K_DEFINE_CLASS(ActorsMenu, KMenu)

ActorsMenu::ActorsMenu()
    : KMenu(uiText("Actors"))
    , movement(kAdopt(new KSubMenu(*this, uiText("Movement"))))
    , frame(kAdopt(new KSubMenu(*this, uiText("Frame"))))
    , background(kAdopt(new KSubMenu(*this, uiText("Window Background"))))
{
    addItem(NewActor, withEllipsis(uiText("New Actor")));
    addItem(ImportActor, withEllipsis(uiText("Import Actor To Project")));
    addItem(DuplicateActor, withEllipsis(uiText("Duplicate Actor")));
    addItem(EditActor, withEllipsis(uiText("Edit Actor")));
    addSeparator();
    addItem(SaveActor, uiText("Save"), 'S');
    addItem(SaveActorAs, withEllipsis(uiText("Save As")));
    addSeparator();

    KMenu& moves = getMovementMenu();
    moves.addItem(NewMovement, uiText("New Movement"));
    moves.addItem(DuplicateMovement, uiText("Duplicate"));
    moves.addSeparator();
    moves.addItem(FlipMovementHorizontal, uiText("Flip Horizontal"));
    moves.addItem(FlipMovementVertical, uiText("Flip Vertical"));
    moves.addSeparator();
    moves.addItem(RemoveMovement, withEllipsis(uiText("Remove")));
    moves.addItem(EditParameters, withEllipsis(uiText("Edit Parameters")));
    moves.addItem(EditOtherMovement, withEllipsis(uiText("Edit Other Movement")));
    addSubMenu(uiText("Movement"), moves);

    KMenu& frames = getFrameMenu();
    frames.addItem(NewFrame, uiText("New Frame"));
    frames.addItem(DuplicateFrame, uiText("Duplicate"));
    frames.addSeparator();
    frames.addItem(FlipFrameHorizontal, uiText("Flip Horizontal"));
    frames.addItem(FlipFrameVertical, uiText("Flip Vertical"));
    frames.addSeparator();
    frames.addItem(RemoveFrame, withEllipsis(uiText("Remove")));
    frames.addItem(EditOtherFrame, withEllipsis(uiText("Edit Other Frame")));
    addSubMenu(uiText("Frame"), frames);
    addSeparator();

    KMenu& backgrounds = getBackgroundMenu();
    backgrounds.addItem(BackgroundNone, uiText("None")).setCheckable(true, true);
    backgrounds.addItem(BackgroundBlack, uiText("Black Chequered")).setCheckable(true, true);
    backgrounds.addItem(BackgroundWhite, uiText("White Chequered")).setCheckable(true, true);
    backgrounds.addItem(BackgroundCustom, withEllipsis(uiText("Custom Image"))).setCheckable(true, true);
    backgrounds.addSeparator();
    backgrounds.addItem(Stretch, uiText("Stretch")).setCheckable(true);
    backgrounds.checkItem(BackgroundBlack, true);
    backgrounds.checkItem(Stretch, true);
    addSubMenu(uiText("Window Background"), backgrounds);
    addSeparator();
    addItem(EndActorEditing, uiText("End Actor Editing"));
}

ActorsMenu::~ActorsMenu() = default;

KMenu& ActorsMenu::getMovementMenu() const { return *static_cast<KMenu*>(movement.get()); }

KMenu& ActorsMenu::getFrameMenu() const { return *static_cast<KMenu*>(frame.get()); }

KMenu& ActorsMenu::getBackgroundMenu() const { return *static_cast<KMenu*>(background.get()); }

int32_t ActorsMenu::getBackgroundMode() const
{
    KMenu& backgrounds = getBackgroundMenu();
    for (int32_t item : { BackgroundNone, BackgroundBlack, BackgroundWhite }) {
        if (backgrounds.findItem(item)->isChecked())
            return item - BackgroundNone;
    }
    return backgrounds.findItem(Stretch)->isChecked() ? 4 : 3;
}

// The movement, frame and background commands work on the actor being
// edited.
void ActorsMenu::openParts(bool actor)
{
    getMovementMenu().setEnabled(actor);
    getFrameMenu().setEnabled(actor);
    getBackgroundMenu().setEnabled(actor);
    KMenu& moves = getMovementMenu();
    moves.enableAllItems(false);
    for (int32_t item : { NewMovement, DuplicateMovement, FlipMovementHorizontal, FlipMovementVertical, RemoveMovement,
                          EditParameters, EditOtherMovement })
        moves.enableItem(item, actor);
    KMenu& frames = getFrameMenu();
    frames.enableAllItems(false);
    for (int32_t item :
         { NewFrame, DuplicateFrame, FlipFrameHorizontal, FlipFrameVertical, RemoveFrame, EditOtherFrame })
        frames.enableItem(item, actor);
    KMenu& backgrounds = getBackgroundMenu();
    backgrounds.enableAllItems(actor);
}

KEventReturn ActorsMenu::doOpen(KMenuEvent&)
{
    MenuState state = MenuState::now();
    if (!beginMenuOpen(*this, state)) {
        openParts(false);
        return 1;
    }
    bool actor = state.actorEditing && !state.playing;
    bool story = !state.actorEditing && !state.playing && state.tape;
    setItemTitle(SaveActor, saveTitle(state));
    enableAllItems(false);
    for (const KMenuItemPtr& item : getItems()) {
        if (item->getSubMenu())
            item->setEnabled(actor);
    }
    for (int32_t item : { NewActor, ImportActor, DuplicateActor, EditActor })
        enableItem(item, story);
    for (int32_t item : { SaveActor, SaveActorAs, EndActorEditing })
        enableItem(item, actor);
    openParts(actor);
    return 1;
}

KEventReturn ActorsMenu::doMenuItem(KMenuEvent& event)
{
    if (!mayRunMenuItem())
        return 0;
    int32_t id = event.getItemId();
    ActorEditor* editor = ActorEditor::current();
    if (id >= BackgroundNone && id <= Stretch && editor) {
        chooseBackground(*editor, id);
        return 1;
    }
    if (!editor)
        return 0;
    KPtr<ActorEditor> held(editor);
    return runCommand(*editor, id) ? 1 : 0;
}

// The ticks follow the editor's background: a custom picture is asked for
// when chosen, and Stretch applies to it.
void ActorsMenu::chooseBackground(ActorEditor& editor, int32_t id)
{
    using Background = ActorEditor::Background;
    KMenu& backgrounds = getBackgroundMenu();
    bool stretch = backgrounds.findItem(Stretch)->isChecked();
    if (id == Stretch) {
        stretch = !stretch;
        backgrounds.checkItem(Stretch, stretch);
        Background now = editor.getBackground();
        if (now == Background::Picture || now == Background::StretchedPicture)
            editor.setBackground(stretch ? Background::StretchedPicture : Background::Picture);
        return;
    }
    if (id == BackgroundCustom && !editor.chooseBackgroundPicture())
        return;
    Background chosen = id == BackgroundNone    ? Background::None
                        : id == BackgroundBlack ? Background::BlackChequer
                        : id == BackgroundWhite ? Background::WhiteChequer
                        : stretch               ? Background::StretchedPicture
                                                : Background::Picture;
    editor.setBackground(chosen);
    for (int32_t item = BackgroundNone; item <= BackgroundCustom; ++item)
        backgrounds.checkItem(item, item == id);
}

bool ActorsMenu::runCommand(ActorEditor& editor, int32_t id)
{
    switch (id) {
    case NewActor:
        editor.doNewActor();
        return true;
    case ImportActor:
        editor.doImportActor();
        return true;
    case DuplicateActor:
        editor.doDuplicateActor();
        return true;
    case EditActor:
        editor.doEditActor();
        return true;
    case SaveActor:
        editor.doSaveActor();
        return true;
    case SaveActorAs:
        editor.doSaveActorAs();
        return true;
    case EndActorEditing:
        editor.doEndActorEditing();
        return true;
    case NewMovement:
        editor.newMovement();
        return true;
    case DuplicateMovement:
        editor.duplicateMovement();
        return true;
    case RemoveMovement:
        editor.removeMovement();
        return true;
    case EditOtherMovement:
        editor.editOtherMovement();
        return true;
    case EditParameters:
        editor.editParameters();
        return true;
    case FlipMovementHorizontal:
    case FlipMovementVertical:
        editor.flipMovement(id == FlipMovementHorizontal);
        return true;
    case FlipFrameHorizontal:
    case FlipFrameVertical:
        editor.flipFrame(id == FlipFrameHorizontal);
        return true;
    case NewFrame:
        editor.newFrame();
        return true;
    case DuplicateFrame:
        editor.duplicateFrame();
        return true;
    case RemoveFrame:
        editor.removeFrame();
        return true;
    case EditOtherFrame:
        editor.editOtherFrame();
        return true;
    default:
        return false;
    }
}
