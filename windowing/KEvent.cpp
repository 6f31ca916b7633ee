#include "windowing/KEvent.h"

#include "kernel/KClass.h"
#include "windowing/KApplication.h"

#include <cstring>

namespace {

int32_t gLiveEvents = 0;
void* gNativeModalWindow = nullptr;

std::vector<KEventPtr>& queue()
{
    static std::vector<KEventPtr> events = [] {
        std::vector<KEventPtr> list;
        list.reserve(64);
        return list;
    }();
    return events;
}

} // namespace

K_DEFINE_CLASS(KEvent, KThing)

KEvent::KEvent() { ++gLiveEvents; }

KEvent::KEvent(int32_t eventType)
    : type(eventType)
{
    ++gLiveEvents;
}

KEvent::~KEvent() { --gLiveEvents; }

void KEvent::setNativeRecord(const KNativeRecord& record)
{
    native = std::make_unique<KNativeRecord>(record);
    time = record.time;
}

KEvent::Parameter* KEvent::findParameter(const char* name)
{
    for (auto& parameter : parameters) {
        if (std::strcmp(parameter.name.c_str(), name) == 0)
            return &parameter;
    }
    return nullptr;
}

const KEvent::Parameter* KEvent::findParameter(const char* name) const
{
    return const_cast<KEvent*>(this)->findParameter(name);
}

void KEvent::setParameter(const char* name, KThing* value)
{
    if (Parameter* existing = findParameter(name)) {
        existing->value = value;
        return;
    }
    parameters.push_back({ KString(name), KThingPtr(value) });
}

bool KEvent::hasParameter(const char* name) const { return findParameter(name) != nullptr; }

KThing* KEvent::getParameter(const char* name) const
{
    const Parameter* parameter = findParameter(name);
    return parameter ? parameter->value.get() : nullptr;
}

void KEvent::removeParameter(const char* name)
{
    for (auto it = parameters.begin(); it != parameters.end(); ++it) {
        if (std::strcmp(it->name.c_str(), name) == 0) {
            parameters.erase(it);
            return;
        }
    }
}

bool KEvent::addHandler(KThing& handler)
{
    for (auto& held : handlers) {
        if (held == &handler)
            return false;
    }
    handlers.emplace_back(&handler);
    return true;
}

bool KEvent::removeHandler(KThing& handler)
{
    for (auto it = handlers.begin(); it != handlers.end(); ++it) {
        if (*it == &handler) {
            handlers.erase(it);
            return true;
        }
    }
    return false;
}

void KEvent::setTarget(KThing* object) { target = object; }

void KEvent::resetTarget() { target.clear(); }

KEventReturn KEvent::process() { return processRoot(); }

KEventReturn KEvent::offerToHandlers()
{
    // A handler may change the list; walk a copy.
    std::vector<KThingPtr> current = handlers;
    for (auto& handler : current) {
        KEventReturn result = handler.get()->handleEvent(*this);
        if (result != 0)
            return result;
    }
    return 0;
}

KEventReturn KEvent::processRoot()
{
    if (isNativeModalUp())
        return 1;
    if (type == 0)
        return 0;
    KEventReturn result = offerToHandlers();
    if (result != 0)
        return result;
    KApplication* application = KApplication::current();
    return application ? application->handleEvent(*this) : 0;
}

int32_t KEvent::liveEvents() { return gLiveEvents; }

void KEvent::setNativeModalWindow(void* window) { gNativeModalWindow = window; }

bool KEvent::isNativeModalUp() { return gNativeModalWindow != nullptr; }

void post(KEvent* event)
{
    if (!event)
        return;
    queue().emplace_back(event);
}

void processQueue()
{
    auto& events = queue();
    while (!events.empty()) {
        KEventPtr event = events.front();
        events.erase(events.begin());
        event->process();
    }
}

KEventReturn processNow(KEvent* event)
{
    if (!event)
        return 0;
    KEventPtr held(event);
    return held->process();
}

bool hasPending(const KClass* eventClass)
{
    for (auto& event : queue()) {
        if (event->isEqualOrSubClass(eventClass))
            return true;
    }
    return false;
}

bool hasPending(const KClass* eventClass, int32_t type)
{
    for (auto& event : queue()) {
        if (event->getType() == type && event->isEqualOrSubClass(eventClass))
            return true;
    }
    return false;
}

void clearQueue() { queue().clear(); }

int32_t queueLength() { return static_cast<int32_t>(queue().size()); }
