#pragma once

#include "kernel/KThingPtr.h"
#include "windowing/KWindowingForward.h"

#include <vector>

// The running timers. The loop gives it an idle call every turn, where due
// timers fire, and asks it how long the next wait may be.
class KTimerManager : public KThing {
    K_DECLARE_CLASS(KTimerManager)
public:
    KTimerManager();
    ~KTimerManager() override;

    // The manager, made on first use.
    static KTimerManager& get();
    static KTimerManager* current();
    // Stops every timer and destroys the manager.
    static void destroy();

    void add(KTimer& timer);
    void remove(KTimer& timer);
    void idle() override;
    // The earliest end of a period over all timers, 0 when there is none.
    uint32_t getNextDeadline() const;
    bool hasTimers() const { return !timers.empty(); }
    int32_t timerCount() const { return static_cast<int32_t>(timers.size()); }
    bool contains(const KTimer& timer) const;

private:
    void fire(KTimer& timer);

    std::vector<KTimerPtr> timers;
};
