#include "windowing/KApplication.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KTimer.h"
#include "windowing/KTimerManager.h"
#include "windowing/KWindowingClasses.h"
#include "windowing/native/KGLibNativeLayer.h"

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <chrono>
#include <thread>

// What the event loop costs while the program waits: the real GLib loop,
// headless, for about two seconds, with no timer and with one repeating
// 20 ms timer. The figure is CPU time over wall time, in percent of a core.

namespace {

constexpr auto kRunTime = std::chrono::milliseconds(2000);

double cpuSeconds()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    auto seconds
        = [](const timeval& t) { return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

class Ticker : public KThing {
public:
    void timerFired(KTimer&) override { ++ticks; }
    int ticks = 0;
};

struct Measure {
    double cpuPercent = 0;
    int ticks = 0;
};

// Turns the loop until a thread posts the quit message after kRunTime.
Measure runLoop(bool withTimer)
{
    KGLibNativeLayer layer;
    KNativeLayer::install(&layer);
    knsEnterKernel();
    Measure result;
    {
        KPtr<KApplication> application(new KApplication());
        Ticker ticker;
        KTimerPtr timer(new KTimer());
        timer->setInterval(20);
        timer->setRepeat(true);
        timer->setMode(KTimer::Exact);
        timer->setTarget(&ticker);
        if (withTimer)
            timer->start();

        double cpuBefore = cpuSeconds();
        auto wallBefore = std::chrono::steady_clock::now();
        std::thread stopper([&layer] {
            std::this_thread::sleep_for(kRunTime);
            layer.postQuit(0);
        });
        application->setAppFlags(KApplication::Running);
        while (application->hasAppFlags(KApplication::Running))
            application->doOneLoop();
        stopper.join();
        double cpu = cpuSeconds() - cpuBefore;
        std::chrono::duration<double> wall = std::chrono::steady_clock::now() - wallBefore;
        timer->stop();
        KTimerManager::destroy();
        result.cpuPercent = 100.0 * cpu / wall.count();
        result.ticks = ticker.ticks;
    }
    knsExitKernel();
    KNativeLayer::install(nullptr);
    return result;
}

void reportRun(benchmark::State& state, bool withTimer)
{
    Measure measure;
    for (auto _ : state)
        measure = runLoop(withTimer);
    state.counters["cpu_percent"] = measure.cpuPercent;
    state.counters["timer_ticks"] = measure.ticks;
}

void BM_IdleLoopNoTimers(benchmark::State& state) { reportRun(state, false); }
void BM_IdleLoopOne20msTimer(benchmark::State& state) { reportRun(state, true); }

} // namespace

BENCHMARK(BM_IdleLoopNoTimers)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_IdleLoopOne20msTimer)->Iterations(1)->Unit(benchmark::kMillisecond);
