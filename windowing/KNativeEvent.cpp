#include "windowing/KNativeEvent.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "windowing/KServices.h"

K_DEFINE_CLASS(KNativeEvent, KEvent)

KNativeEvent::KNativeEvent() = default;

KNativeEvent::KNativeEvent(const KNativeRecord& record) { setNativeRecord(record); }

KEventReturn KNativeEvent::process()
{
    if (isNativeModalUp())
        return 1;
    return kksProcessNativeEvent(*this);
}

KEventReturn kksProcessNativeEvent(KEvent& event)
{
    if (!event.isEqualOrSubClass(KNativeEvent::classRecord)) {
        KErrorHandler::raiseError(KError::WrongEventClass);
        return 0;
    }
    auto route = kServices().nativeEvent;
    return route ? route(static_cast<KNativeEvent&>(event)) : 0;
}
