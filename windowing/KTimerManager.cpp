#include "windowing/KTimerManager.h"

#include "kernel/KClass.h"
#include "windowing/KApplication.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KTimer.h"

namespace {

KTimerManager* gTimerManager = nullptr;
// The holder of the manager made by get().
KTimerManagerPtr& holder()
{
    static KTimerManagerPtr ptr;
    return ptr;
}

} // namespace

K_DEFINE_CLASS(KTimerManager, KThing)

KTimerManager::KTimerManager()
{
    timers.reserve(512);
    gTimerManager = this;
}

KTimerManager::~KTimerManager()
{
    for (auto& timer : timers)
        timer->running = 0;
    if (gTimerManager == this)
        gTimerManager = nullptr;
}

KTimerManager& KTimerManager::get()
{
    if (!gTimerManager)
        holder() = new KTimerManager();
    return *gTimerManager;
}

KTimerManager* KTimerManager::current() { return gTimerManager; }

void KTimerManager::destroy()
{
    if (gTimerManager) {
        // Stop first: a timer's release may run code that looks for timers.
        for (auto& timer : gTimerManager->timers)
            timer->running = 0;
        gTimerManager->timers.clear();
    }
    holder().clear();
}

bool KTimerManager::contains(const KTimer& timer) const
{
    for (auto& held : timers) {
        if (held.get() == &timer)
            return true;
    }
    return false;
}

void KTimerManager::add(KTimer& timer)
{
    if (!contains(timer))
        timers.emplace_back(&timer);
}

void KTimerManager::remove(KTimer& timer)
{
    for (auto it = timers.begin(); it != timers.end(); ++it) {
        if (it->get() == &timer) {
            timers.erase(it);
            break;
        }
    }
    if (timers.empty()) {
        if (KApplication* application = KApplication::current())
            application->removeIdler(*this);
    }
}

// Timers may start, stop or restart timers from their callbacks, so the list
// is walked by index and counted anew on each step.
void KTimerManager::idle()
{
    size_t index = 0;
    while (index < timers.size()) {
        KTimerPtr timer = timers[index];
        if (timer->isRunning() && timer->isDue())
            fire(*timer);
        if (index < timers.size() && timers[index] == timer)
            ++index;
    }
}

void KTimerManager::fire(KTimer& timer)
{
    if (!timer.isRepeating())
        timer.stop();
    if (KThing* target = timer.getTarget())
        target->timerFired(timer);
    if (timer.isRepeating())
        timer.reschedule();
}

uint32_t KTimerManager::getNextDeadline() const
{
    if (timers.empty())
        return 0;
    uint32_t now = knsGetTime();
    uint32_t earliest = timers.front()->getDeadline();
    for (auto& timer : timers) {
        uint32_t deadline = timer->getDeadline();
        if (kTimeDifference(deadline, now) < kTimeDifference(earliest, now))
            earliest = deadline;
    }
    return earliest;
}
