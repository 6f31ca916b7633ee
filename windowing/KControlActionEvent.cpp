#include "windowing/KControlActionEvent.h"

#include "kernel/KClass.h"
#include "windowing/KApplication.h"
#include "windowing/KServices.h"

K_DEFINE_CLASS(KControlActionEvent, KActionEvent)

KControlActionEvent::KControlActionEvent() = default;

KControlActionEvent::KControlActionEvent(int32_t eventType, KThing* control)
    : KActionEvent(eventType, control)
{
}

KEventReturn KControlActionEvent::process()
{
    if (isNativeModalUp())
        return 1;
    if (auto route = kServices().routeControlAction) {
        KEventReturn result = route(*this);
        if (result != 0)
            return result;
    }
    KApplication* application = KApplication::current();
    return application ? application->doControlAction(*this) : 0;
}
