#include "kmultimedia/KMediaFeedbackEvent.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(KMediaFeedbackEvent, KEvent)

KMediaFeedbackEvent::KMediaFeedbackEvent() = default;
KMediaFeedbackEvent::~KMediaFeedbackEvent() = default;

void KMediaFeedbackEvent::setValue(const char* name, const KVariable& value)
{
    setParameter(name, new KVariable(value));
}

KVariable* KMediaFeedbackEvent::getValue(const char* name) const
{
    return dynamic_cast<KVariable*>(getParameter(name));
}

bool KMediaFeedbackEvent::addTarget(KThing& target)
{
    for (auto& held : targets) {
        if (held.get() == &target)
            return false;
    }
    targets.emplace_back(&target);
    return true;
}

KThing* KMediaFeedbackEvent::getTargetAt(int32_t index) const
{
    if (index < 0 || index >= targetCount())
        return nullptr;
    return targets[size_t(index)].get();
}

KEventReturn KMediaFeedbackEvent::process()
{
    // A receiver may drop the medium and with it its last hold on another
    // receiver; the copy keeps each alive for its turn.
    std::vector<KThingPtr> receivers = targets;
    for (auto& receiver : receivers) {
        KEventReturn result = receiver.get()->handleEvent(*this);
        if (result != 0)
            return result;
    }
    return 0;
}
