#include "app/AnimMenu.h"

#include "app/StylusActions.h"
#include "app/StylusMenuBar.h"
#include "app/StylusMenuRules.h"
#include "app/UiText.h"
#include "kernel/KClass.h"
#include "windowing/KMenuEvent.h"

K_DEFINE_CLASS(AnimMenu, KMenu)

AnimMenu::AnimMenu()
    : KMenu(uiText("Animate"))
{
    addItem(Play, uiText("Play"), 'G');
    addItem(PlayFromPosition, uiText("Play From Current Position"), '8');
    addItem(Stop, uiText("Stop"), '1');
    addSeparator();
    addItem(AnimationSetup, withEllipsis(uiText("Animation Setup")), 'A');
}

KEventReturn AnimMenu::doOpen(KMenuEvent&)
{
    MenuState state = MenuState::now();
    if (!beginMenuOpen(*this, state))
        return 1;
    if (state.actorEditing || !state.tape) {
        setEnabled(false);
        return 1;
    }
    bool any = state.elements() > 0;
    enableItem(Play, !state.playing && any);
    enableItem(PlayFromPosition, !state.playing && any);
    enableItem(Stop, state.playing);
    StylusMenuBar* bar = StylusMenuBar::current();
    enableItem(AnimationSetup, !state.playing && bar && bar->hooks().animationSetup);
    return 1;
}

KEventReturn AnimMenu::doMenuItem(KMenuEvent& event)
{
    StylusActions* actions = StylusActions::current();
    if (!mayRunMenuItem() || !actions)
        return 0;
    KPtr<StylusActions> held(actions);
    switch (event.getItemId()) {
    case Play:
        actions->play(false, false, false);
        return 1;
    case PlayFromPosition:
        actions->play(true, false, false);
        return 1;
    case Stop:
        actions->stopPlay();
        return 1;
    case AnimationSetup:
        if (StylusMenuBar* bar = StylusMenuBar::current(); bar && bar->hooks().animationSetup)
            bar->hooks().animationSetup();
        return 1;
    default:
        return 0;
    }
}
