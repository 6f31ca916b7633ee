#pragma once

#include "kernel/KThing.h"
#include "windowing/KWindowingForward.h"

// Calls timerFired on its target once per interval while it runs. Timers
// fire from the event loop's idle pass, never from another thread.
//
// Modes decide where the next period starts: 0 exact, one interval after
// the last start, so a backlog is made up; 1 bounded, the same but a
// backlog above the maximum lag is dropped; 2 relative, from now.
class KTimer : public KThing {
    K_DECLARE_CLASS(KTimer)
public:
    enum class Mode : int32_t { Exact = 0, Bounded = 1, Relative = 2 };
    using enum Mode;

    KTimer();
    ~KTimer() override;

    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;

    void setMode(Mode value) { mode = value; }
    Mode getMode() const { return mode; }
    void setRepeat(bool value) { repeat = value ? 1 : 0; }
    bool isRepeating() const { return repeat != 0; }
    void setMaximumLag(int32_t milliseconds) { maximumLag = milliseconds; }
    int32_t getMaximumLag() const { return maximumLag; }
    // A negative interval means never, and stops a running timer.
    void setInterval(int32_t milliseconds);
    int32_t getInterval() const { return interval; }
    // The object told when the timer fires; not held by the timer, so its
    // owner stops the timer before it goes.
    void setTarget(KThing* object) { target = object; }
    KThing* getTarget() const { return target; }

    void start();
    void stop();
    bool isRunning() const { return running != 0; }
    // True when not running, or when more than the interval has passed.
    bool isDue() const;
    int32_t getElapsed() const;
    uint32_t getStartTime() const { return startTime; }
    // The time the current period ends.
    uint32_t getDeadline() const { return startTime + static_cast<uint32_t>(interval); }
    void reschedule();

private:
    friend class KTimerManager;

    KThing* target = nullptr;
    Mode mode = Relative;
    int32_t repeat = 0;
    uint32_t startTime = 0;
    int32_t interval = -1;
    int32_t maximumLag = 1000;
    uint8_t running = 0;
};
