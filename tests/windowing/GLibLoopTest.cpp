#include "WindowingTestSupport.h"

#include "windowing/KWindow.h"
#include "windowing/native/KGLibNativeLayer.h"

#include <glib.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

// Runs the real GLib layer headless. A GLib timeout fails any test whose
// loop is still waiting after a few seconds and ends that wait.
class GLibLoopTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        kRegisterWindowingClasses();
        KNativeLayer::install(&layer);
        kServices() = KServices();
        KTimerManager::destroy();
        clearQueue();
        guard = g_timeout_add(5000, &failAndStop, this);
    }
    void TearDown() override
    {
        if (guard)
            g_source_remove(guard);
        KTimerManager::destroy();
        clearQueue();
        KNativeLayer::install(nullptr);
    }
    static gboolean failAndStop(gpointer data)
    {
        auto* test = static_cast<GLibLoopTest*>(data);
        ADD_FAILURE() << "the GLib loop did not return in time";
        test->guard = 0;
        test->layer.postQuit(99);
        if (KApplication* application = KApplication::current())
            application->clearAppFlags(KApplication::Running);
        return G_SOURCE_REMOVE;
    }

    KGLibNativeLayer layer;
    guint guard = 0;
};

TEST_F(GLibLoopTest, WakeUpFromAnotherThreadEndsABlockingWait)
{
    ASSERT_TRUE(layer.initialize());
    EXPECT_FALSE(layer.hasDisplay());
    std::thread waker([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        layer.wakeUp();
    });
    auto start = Clock::now();
    bool keepRunning = true;
    layer.processNativeMessage(true, keepRunning, 0);
    auto waited = Clock::now() - start;
    waker.join();
    EXPECT_TRUE(keepRunning);
    EXPECT_GE(waited, std::chrono::milliseconds(40));
    EXPECT_LT(waited, std::chrono::milliseconds(2000));
}

TEST_F(GLibLoopTest, BlockingWaitEndsAtItsLimitAndQuitFromAThreadStopsIt)
{
    uint32_t before = layer.now();
    bool keepRunning = true;
    layer.processNativeMessage(true, keepRunning, 30);
    int32_t waited = kTimeDifference(layer.now(), before);
    EXPECT_GE(waited, 30);
    EXPECT_LT(waited, 1000);
    EXPECT_TRUE(keepRunning);

    std::thread quitter([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        layer.postQuit(5);
    });
    layer.processNativeMessage(true, keepRunning, 0);
    quitter.join();
    EXPECT_FALSE(keepRunning);
    EXPECT_EQ(layer.exitCode(), 5);
}

class Ticker : public KThing {
public:
    void timerFired(KTimer&) override
    {
        if (++ticks == 5)
            KApplication::current()->postQuit();
    }
    int ticks = 0;
};

TEST_F(GLibLoopTest, RepeatingTimerDrivesTheRealLoop)
{
    KPtr<KApplication> app(new KApplication());
    Ticker ticker;
    KTimerPtr timer(new KTimer());
    timer->setInterval(10);
    timer->setRepeat(true);
    timer->setTarget(&ticker);
    timer->start();
    auto start = Clock::now();
    app->setAppFlags(KApplication::Running);
    while (app->hasAppFlags(KApplication::Running))
        app->doOneLoop();
    auto elapsed = Clock::now() - start;
    timer->stop();
    EXPECT_EQ(ticker.ticks, 5);
    EXPECT_GE(elapsed, std::chrono::milliseconds(50));
    EXPECT_LT(elapsed, std::chrono::milliseconds(2000));
}

TEST_F(GLibLoopTest, HeadlessWindowsAreBareRecords)
{
    KPtr<KApplication> app(new KApplication());
    KWindowPtr window(new KWindow());
    window->open(KWindow::Normal);
    EXPECT_TRUE(window->isOpen());
    EXPECT_NE(window->getNativeWindow(), nullptr);
    window->close();
    EXPECT_EQ(window->getNativeWindow(), nullptr);
    clearQueue();
}

} // namespace
