#pragma once

#include "kernel/KClass.h"
#include "tests/support/TestSupport.h"
#include "windowing/KApplication.h"
#include "windowing/KEvent.h"
#include "windowing/KServices.h"
#include "windowing/KTimer.h"
#include "windowing/KTimerManager.h"
#include "windowing/KWindowingClasses.h"
#include "windowing/testing/KFakeNativeLayer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

// A fresh fake native layer, empty services, no timers and an empty queue
// for each test. A loop that would wait forever fails the test and stops.
class FakeLayerTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        kRegisterWindowingClasses();
        KNativeLayer::install(&layer);
        layer.setStuckProc(&failStuck);
        kServices() = KServices();
        KTimerManager::destroy();
        clearQueue();
    }
    void TearDown() override
    {
        KTimerManager::destroy();
        clearQueue();
        kServices() = KServices();
        KNativeLayer::install(nullptr);
    }
    static void failStuck(const char* message) { ADD_FAILURE() << message; }

    KNativeRecord record(int32_t message, KWindow* window = nullptr, int32_t param1 = 0, int32_t param2 = 0)
    {
        KNativeRecord r;
        r.window = window;
        r.message = message;
        r.param1 = param1;
        r.param2 = param2;
        return r;
    }

    KFakeNativeLayer layer;
};

// Counts its firings and can run a step of its own when fired.
class CountingTarget : public KThing {
public:
    void timerFired(KTimer& timer) override
    {
        ++fired;
        times.push_back(KNativeLayer::get().now());
        if (onFire)
            onFire(timer);
    }
    int fired = 0;
    std::vector<uint32_t> times;
    void (*onFire)(KTimer& timer) = nullptr;
};

// Ends a loop that runs longer than it should, failing the test.
class Watchdog : public KThing {
public:
    explicit Watchdog(int32_t milliseconds)
        : timer(new KTimer())
    {
        timer->setInterval(milliseconds);
        timer->setTarget(this);
        timer->start();
    }
    ~Watchdog() override { timer->stop(); }
    void timerFired(KTimer&) override
    {
        ADD_FAILURE() << "the event loop ran past its watchdog";
        if (KApplication* application = KApplication::current())
            application->clearAppFlags(KApplication::Running);
    }

private:
    KTimerPtr timer;
};
