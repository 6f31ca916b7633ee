#include "windowing/KTimer.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KTimerManager.h"

K_DEFINE_CLASS(KTimer, KThing)

KTimer::KTimer() = default;

KTimer::~KTimer() = default;

void KTimer::readFromFile(KFile&) { KErrorHandler::raiseError(KError::ReadNotImplemented); }

void KTimer::writeToFile(KFile&, int32_t) { KErrorHandler::raiseError(KError::WriteNotImplemented); }

void KTimer::setInterval(int32_t milliseconds)
{
    interval = milliseconds;
    if (interval < 0)
        stop();
}

void KTimer::start()
{
    if (isRunning())
        return;
    startTime = knsGetTime();
    if (interval < 0)
        return;
    running = 1;
    KTimerManager::get().add(*this);
}

void KTimer::stop()
{
    if (!isRunning())
        return;
    running = 0;
    if (KTimerManager* manager = KTimerManager::current())
        manager->remove(*this);
}

bool KTimer::isDue() const
{
    if (!isRunning())
        return true;
    return getElapsed() > interval;
}

int32_t KTimer::getElapsed() const
{
    if (!isRunning())
        return 0;
    return kTimeDifference(knsGetTime(), startTime);
}

void KTimer::reschedule()
{
    if (!isRunning())
        return;
    uint32_t now = knsGetTime();
    switch (mode) {
    case Exact:
        startTime += static_cast<uint32_t>(interval);
        break;
    case Bounded: {
        uint32_t oldStart = startTime;
        startTime += static_cast<uint32_t>(interval);
        if (kTimeDifference(now, oldStart) > maximumLag)
            startTime = now - static_cast<uint32_t>(maximumLag) + static_cast<uint32_t>(interval);
        break;
    }
    default:
        startTime = now;
        break;
    }
}
