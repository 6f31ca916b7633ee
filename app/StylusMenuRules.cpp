#include "app/StylusMenuRules.h"

#include "app/StylusActions.h"
#include "app/StylusWindow.h"
#include "app/UiText.h"
#include "tape/Tape.h"
#include "windowing/KCursorManager.h"
#include "windowing/KMenu.h"
#include "windowing/KWindowManager.h"

namespace {

bool modalUp()
{
    KWindowManager* manager = KWindowManager::current();
    return manager && manager->getModalCount() > 0;
}

} // namespace

MenuState MenuState::now()
{
    MenuState state;
    state.window = StylusWindow::current();
    state.tape = state.window ? state.window->getTape() : nullptr;
    state.actions = StylusActions::current();
    state.modal = modalUp();
    if (state.window) {
        state.mode = state.window->getWindowMode();
        state.actorEditing = state.mode == WindowMode::ActorEditing;
        state.textOpen = state.window->getEditMode() == EditMode::Text && state.window->getEditField();
    }
    state.playing = state.tape && state.tape->getPlayState() != Tape::PlayState::Stopped;
    return state;
}

int32_t MenuState::elements() const { return tape ? tape->getCount() : 0; }

int32_t MenuState::position() const { return tape ? tape->getPosition() : 0; }

// One ellipsis for every title of the program.
KString withEllipsis(const KString& title) { return title + "..."; }

bool beginMenuOpen(KMenu& menu, const MenuState& state)
{
    if (!state.window)
        return false;
    if (state.modal) {
        menu.setEnabled(false);
        return false;
    }
    menu.setEnabled(true);
    return true;
}

bool mayRunMenuItem()
{
    KCursorManager* cursors = KCursorManager::current();
    if (cursors && cursors->getCaptureWindow())
        return false;
    return !modalUp();
}

KString saveTitle(const MenuState& state)
{
    if (!state.actions || state.actions->isUntitled() || state.elements() == 0)
        return uiText("Save");
    return uiText("Save \"%1\"", state.actions->getProjectName());
}
