#include "windowing/KKeyEvent.h"

#include "kernel/KClass.h"
#include "windowing/KApplication.h"
#include "windowing/KServices.h"
#include "windowing/KWindow.h"

K_DEFINE_CLASS(KKeyEvent, KEvent)

KKeyEvent::KKeyEvent() = default;

KKeyEvent::KKeyEvent(int32_t eventType, KWindow* eventWindow, int32_t code, int32_t modifierFlags)
    : KEvent(eventType)
    , window(eventWindow)
    , keyCode(code)
    , modifiers(modifierFlags)
{
}

KEventReturn KKeyEvent::process()
{
    if (isNativeModalUp())
        return 1;
    if (auto route = kServices().routeKey)
        return route(*this);
    return processByApplication();
}

KEventReturn KKeyEvent::processByApplication()
{
    KApplication* application = KApplication::current();
    if (!application)
        return 0;
    switch (getType()) {
    case KeyDown:
        return application->doKeyDown(*this);
    case KeyUp:
        return application->doKeyUp(*this);
    case KeyRepeat:
        return application->doKeyRepeat(*this);
    default:
        return 0;
    }
}
