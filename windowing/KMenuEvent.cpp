#include "windowing/KMenuEvent.h"

#include "kernel/KClass.h"
#include "windowing/KApplication.h"
#include "windowing/KServices.h"

K_DEFINE_CLASS(KMenuEvent, KEvent)

KMenuEvent::KMenuEvent() = default;

KMenuEvent::KMenuEvent(int32_t eventType)
    : KEvent(eventType)
{
}

KEventReturn KMenuEvent::process()
{
    if (isNativeModalUp())
        return 1;
    if (auto route = kServices().routeMenu) {
        KEventReturn result = route(*this);
        if (result != 0)
            return result;
    }
    return processByApplication();
}

KEventReturn KMenuEvent::processByApplication()
{
    KApplication* application = KApplication::current();
    if (!application)
        return 0;
    switch (getType()) {
    case MenuOpen:
        return application->doMenuOpen(*this);
    case ItemChosen:
        return application->doMenuItem(*this);
    case CustomItemDrawn:
        return application->doCustomMenuItem(*this);
    case AboutChosen:
        return application->doAbout(*this);
    case HelpChosen:
        return application->doHelp(*this);
    case MenuBarItem:
        return application->doMenuBar(*this);
    default:
        return 0;
    }
}
