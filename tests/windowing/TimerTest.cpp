#include "WindowingTestSupport.h"

namespace {

class TimerTest : public FakeLayerTest {
protected:
    KTimerPtr makeTimer(int32_t interval, bool repeat, KTimer::Mode mode = KTimer::Relative)
    {
        KTimerPtr timer(new KTimer());
        timer->setInterval(interval);
        timer->setRepeat(repeat);
        timer->setMode(mode);
        timer->setTarget(&target);
        return timer;
    }
    void idle() { KTimerManager::get().idle(); }
    // Idle passes until one fires nothing; returns how many fired.
    int drain()
    {
        int before = target.fired;
        for (int i = 0; i < 1000; ++i) {
            int count = target.fired;
            idle();
            if (target.fired == count)
                break;
        }
        return target.fired - before;
    }

    CountingTarget target;
};

TEST_F(TimerTest, NegativeIntervalNeverRunsAndStopsARunningTimer)
{
    KTimerPtr never = makeTimer(-1, true);
    never->start();
    EXPECT_FALSE(never->isRunning());
    EXPECT_FALSE(KTimerManager::get().contains(*never));
    layer.advance(10000);
    idle();
    EXPECT_EQ(target.fired, 0);

    KTimerPtr running = makeTimer(10, true);
    running->start();
    ASSERT_TRUE(running->isRunning());
    running->setInterval(-5);
    EXPECT_FALSE(running->isRunning());
    EXPECT_FALSE(KTimerManager::get().hasTimers());
    EXPECT_EQ(running->getElapsed(), 0);
    EXPECT_TRUE(running->isDue());
}

TEST_F(TimerTest, FiresOnlyWhenElapsedIsStrictlyAboveTheInterval)
{
    KTimerPtr timer = makeTimer(20, false);
    timer->start();
    layer.advance(20);
    EXPECT_EQ(timer->getElapsed(), 20);
    EXPECT_FALSE(timer->isDue());
    idle();
    EXPECT_EQ(target.fired, 0);
    layer.advance(1);
    EXPECT_TRUE(timer->isDue());
    idle();
    EXPECT_EQ(target.fired, 1);
    EXPECT_FALSE(timer->isRunning());
    EXPECT_FALSE(KTimerManager::get().hasTimers());
}

TEST_F(TimerTest, OneShotRestartedInItsCallbackFiresOncePerPeriodAndIsListedOnce)
{
    KTimerPtr timer = makeTimer(10, false);
    target.onFire = [](KTimer& fired) {
        fired.start();
        EXPECT_EQ(KTimerManager::get().timerCount(), 1);
    };
    timer->start();
    for (int period = 1; period <= 5; ++period) {
        layer.advance(11);
        idle();
        idle();
        EXPECT_EQ(target.fired, period);
        EXPECT_EQ(KTimerManager::get().timerCount(), 1);
    }
}

TEST_F(TimerTest, ExactModeMakesUpTheWholeBacklog)
{
    KTimerPtr timer = makeTimer(20, true, KTimer::Exact);
    timer->start();
    uint32_t start = timer->getStartTime();
    layer.advance(100);
    // One firing per pass, each period starting one interval after the last.
    idle();
    EXPECT_EQ(target.fired, 1);
    EXPECT_EQ(timer->getStartTime(), start + 20);
    EXPECT_EQ(drain(), 3);
    EXPECT_EQ(timer->getStartTime(), start + 80);
    EXPECT_FALSE(timer->isDue());
}

TEST_F(TimerTest, BoundedModeDropsTheBacklogAboveTheMaximumLag)
{
    KTimerPtr timer = makeTimer(20, true, KTimer::Bounded);
    timer->setMaximumLag(50);
    timer->start();
    layer.advance(200);
    idle();
    EXPECT_EQ(target.fired, 1);
    // Resumes from now - lag + interval.
    EXPECT_EQ(timer->getStartTime(), layer.now() - 50 + 20);
    EXPECT_EQ(timer->getElapsed(), 30);
    // What is left of the backlog is within the lag and is made up.
    EXPECT_EQ(drain(), 1);
    EXPECT_EQ(timer->getElapsed(), 10);

    // A backlog within the lag behaves as in exact mode.
    KTimerPtr small = makeTimer(20, true, KTimer::Bounded);
    small->setMaximumLag(50);
    small->start();
    uint32_t start = small->getStartTime();
    layer.advance(45);
    idle();
    EXPECT_EQ(small->getStartTime(), start + 20);
}

TEST_F(TimerTest, RelativeModeRestartsFromNow)
{
    KTimerPtr timer = makeTimer(20, true);
    timer->start();
    layer.advance(100);
    EXPECT_EQ(drain(), 1);
    EXPECT_EQ(timer->getStartTime(), layer.now());
    layer.advance(21);
    EXPECT_EQ(drain(), 1);
}

TEST_F(TimerTest, CallbacksThatStopTimersDoNotSkipOthers)
{
    CountingTarget other;
    KTimerPtr first = makeTimer(10, true);
    KTimerPtr second = makeTimer(10, true);
    second->setTarget(&other);
    target.onFire = [](KTimer& fired) { fired.stop(); };
    first->start();
    second->start();
    layer.advance(11);
    idle();
    EXPECT_EQ(target.fired, 1);
    EXPECT_EQ(other.fired, 1);
    EXPECT_EQ(KTimerManager::get().timerCount(), 1);
}

TEST_F(TimerTest, ClockWrapAndNextDeadline)
{
    EXPECT_EQ(KTimerManager::get().getNextDeadline(), 0u);
    layer.setTime(0xFFFFFFF0u);
    KTimerPtr late = makeTimer(40, false);
    KTimerPtr soon = makeTimer(30, false);
    late->start();
    soon->start();
    EXPECT_EQ(KTimerManager::get().getNextDeadline(), 0xFFFFFFF0u + 30u);
    layer.advance(31);
    EXPECT_EQ(soon->getElapsed(), 31);
    idle();
    EXPECT_EQ(target.fired, 1);
    EXPECT_EQ(KTimerManager::get().getNextDeadline(), 0xFFFFFFF0u + 40u);
}

} // namespace
