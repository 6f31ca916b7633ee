#include "windowing/KActionEvent.h"

#include "kernel/KClass.h"
#include "windowing/KServices.h"

K_DEFINE_CLASS(KActionEvent, KEvent)

KActionEvent::KActionEvent() = default;

KActionEvent::KActionEvent(int32_t eventType, KThing* actionSource)
    : KEvent(eventType)
    , source(actionSource)
{
}

KEventReturn KActionEvent::process()
{
    if (isNativeModalUp())
        return 1;
    if (auto route = kServices().routeAction) {
        bool routed = true;
        KEventReturn result = route(*this, routed);
        if (routed)
            return result;
    }
    return processRoot();
}
