#include "windowing/KMouseEvent.h"

#include "kernel/KClass.h"
#include "windowing/KApplication.h"
#include "windowing/KServices.h"
#include "windowing/KWindow.h"

K_DEFINE_CLASS(KMouseEvent, KEvent)

KMouseEvent::KMouseEvent() = default;

KMouseEvent::KMouseEvent(int32_t eventType, KWindow* eventWindow)
    : KEvent(eventType)
    , window(eventWindow)
{
}

KEventReturn KMouseEvent::process()
{
    if (isNativeModalUp())
        return 1;
    if (!window)
        return 0;
    if (auto route = kServices().routeMouse)
        return route(*this);
    return processByApplication();
}

KEventReturn KMouseEvent::processByApplication()
{
    KApplication* application = KApplication::current();
    if (!application)
        return 0;
    switch (getType()) {
    case Enter:
        return application->doMouseEnter(*this);
    case Leave:
        return application->doMouseLeave(*this);
    case Down:
        return application->doMouseDown(*this);
    case Moved:
        return application->doMouseMoved(*this);
    case Other:
        return application->doMouseOther(*this);
    case Up:
        return application->doMouseUp(*this);
    default:
        return 0;
    }
}
