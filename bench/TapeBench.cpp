// The tape's page: rebuilding it from the last transition, and stepping back
// on a long tape. Each benchmark times its bound in the same run and reports
// the ratio as the counter "x_bound" (measured time / bound time). Times are
// the thread's processor time, so that other programs on a busy machine do
// not count; the wall-clock figures are reported beside them.

#include "graphics/KGraphicDevice.h"
#include "kernel/KErrorHandler.h"
#include "kmultimedia/KBresenham.h"
#include "tape/ImageTapePage.h"
#include "tape/Stroke.h"
#include "tape/Tape.h"
#include "tape/TapeClasses.h"
#include "tape/WipeOut.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <random>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double threadSeconds()
{
    timespec now {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

constexpr int16_t kPageWidth = 800;
constexpr int16_t kPageHeight = 600;
constexpr int16_t kDabSize = 32;
constexpr int32_t kDabs = 10000;
// A stroke of two points 396 pixels apart: a dab for the first point, then
// the line's dabs every 4 pixels from its start to its end.
constexpr int32_t kLineLength = 396;
constexpr int32_t kDabsPerStroke = 1 + 1 + kLineLength / (kDabSize / 8);
constexpr int32_t kLongTape = 5000;
// A frame at 60 Hz.
constexpr double kFrameSeconds = 0.016;

void setUp()
{
    static bool done = false;
    if (done)
        return;
    KErrorHandler::loadKernelErrors();
    registerTapeClasses();
    done = true;
}

KColor colourOf(uint32_t rgb)
{
    return KColor(uint16_t(((rgb >> 16) & 0xFF) << 8), uint16_t(((rgb >> 8) & 0xFF) << 8), uint16_t((rgb & 0xFF) << 8));
}

struct Page {
    TapePtr tape;
    ImageTapePagePtr page;
};

Page makePage()
{
    Page made { TapePtr(new Tape()), ImageTapePagePtr(new ImageTapePage(KGraphicSize(kPageWidth, kPageHeight))) };
    made.tape->setSpriteSystem(*made.page);
    return made;
}

// Every dab square a stroke draws, in the order it draws them.
void collectDabs(const Stroke& stroke, std::vector<KGraphicRectangle>& out)
{
    int16_t size = stroke.getBrushWidth();
    int16_t half = int16_t(size / 2);
    KGraphicPoint first = stroke.getPoint(0);
    out.emplace_back(int16_t(first.x - half), int16_t(first.y - half), size, size);
    for (int32_t i = 1; i < stroke.getPointCount(); ++i) {
        KGraphicPoint from = stroke.getPoint(i - 1);
        KGraphicPoint to = stroke.getPoint(i);
        if (i == 1)
            out.emplace_back(int16_t(from.x - half), int16_t(from.y - half), size, size);
        KBresenham stepper;
        stepper.set(from.x, from.y, to.x, to.y);
        int32_t x = 0;
        int32_t y = 0;
        if (stepper.next(x, y))
            continue;
        bool arrived = false;
        while (!arrived) {
            for (int32_t step = 0; step < std::max(1, size / 8) && !arrived; ++step)
                arrived = stepper.next(x, y);
            out.emplace_back(int16_t(x - half), int16_t(y - half), size, size);
        }
    }
}

// A page that begins with a transition and then holds 10,000 dabs of size
// 32 in lines across the page.
Page makeDabPage(std::vector<KGraphicRectangle>& dabs)
{
    Page made = makePage();
    made.tape->addElement(*new Stroke());
    WipeOutPtr wipe(new WipeOut());
    wipe->setColour(colourOf(0x102030));
    made.tape->addElement(*wipe);
    std::mt19937 random(42);
    for (int32_t i = 0; i < (kDabs + kDabsPerStroke - 1) / kDabsPerStroke; ++i) {
        StrokePtr stroke(new Stroke());
        stroke->setBrushSize(kDabSize);
        stroke->setColour(colourOf(random() & 0xFFFFFF));
        int16_t x = int16_t(random() % (kPageWidth - kLineLength));
        int16_t y = int16_t(random() % kPageHeight);
        stroke->addPoint(x, y);
        stroke->addPoint(int16_t(x + kLineLength), y);
        collectDabs(*stroke, dabs);
        made.tape->addElement(*stroke);
    }
    return made;
}

double fillSeconds(KGraphicDevice& device, const std::vector<KGraphicRectangle>& dabs)
{
    double start = threadSeconds();
    device.setForeground(colourOf(0x808080));
    for (const KGraphicRectangle& dab : dabs)
        device.fillRectangle(dab);
    return threadSeconds() - start;
}

// The page rebuilt from scratch: no snapshot to start from.
void BM_RebuildTenThousandDabs(benchmark::State& state)
{
    setUp();
    std::vector<KGraphicRectangle> dabs;
    Page made = makeDabPage(dabs);
    made.tape->getPageCache().setEnabled(state.range(0) != 0);
    KGraphicDevice& device = made.page->getPageDevice();
    double rebuild = 0.0;
    double bound = 0.0;
    uint32_t operations = 0;
    for (auto _ : state) {
        made.tape->getPageCache().clear();
        uint32_t before = device.getChangeCount();
        double start = threadSeconds();
        made.tape->rebuildPage();
        double seconds = threadSeconds() - start;
        operations = device.getChangeCount() - before;
        rebuild += seconds;
        bound += fillSeconds(device, dabs);
        state.SetIterationTime(seconds);
    }
    state.counters["dabs"] = double(dabs.size());
    state.counters["paint_ops"] = double(operations);
    state.counters["x_bound"] = rebuild / bound;
}
BENCHMARK(BM_RebuildTenThousandDabs)->Arg(0)->Arg(1)->UseManualTime()->Unit(benchmark::kMillisecond);

// A tape of strokes such as a hand leaves: a few dozen points in a random
// walk, brushes from 4 to 40.
Page makeLongTape()
{
    Page made = makePage();
    std::mt19937 random(7);
    std::uniform_int_distribution<int32_t> walk(-12, 12);
    for (int32_t i = 0; i < kLongTape; ++i) {
        StrokePtr stroke(new Stroke());
        stroke->setBrushSize(int16_t(4 + random() % 37));
        stroke->setColour(colourOf(random() & 0xFFFFFF));
        int32_t x = int32_t(random() % kPageWidth);
        int32_t y = int32_t(random() % kPageHeight);
        for (int32_t p = 20 + int32_t(random() % 21); p > 0; --p) {
            stroke->addPoint(int16_t(x), int16_t(y));
            x = std::clamp(x + walk(random), 0, kPageWidth - 1);
            y = std::clamp(y + walk(random), 0, kPageHeight - 1);
        }
        made.tape->addElement(*stroke);
    }
    return made;
}

// One step back at a time from the end of 5,000 strokes with no transition;
// the bound is one frame. Reports the slowest step as well.
void BM_StepBackOnALongTape(benchmark::State& state)
{
    setUp();
    static Page made = makeLongTape();
    Tape& tape = *made.tape;
    tape.getPageCache().setEnabled(state.range(0) != 0);
    double startAt = threadSeconds();
    tape.goToEnd();
    double warmUp = threadSeconds() - startAt;
    std::vector<double> times;
    std::vector<double> wallTimes;
    times.reserve(kLongTape);
    wallTimes.reserve(kLongTape);
    for (auto _ : state) {
        if (tape.getPosition() == 0) {
            state.PauseTiming();
            tape.goToEnd();
            state.ResumeTiming();
        }
        auto wallStart = Clock::now();
        double start = threadSeconds();
        tape.stepBack();
        double seconds = threadSeconds() - start;
        times.push_back(seconds);
        wallTimes.push_back(std::chrono::duration<double>(Clock::now() - wallStart).count());
        state.SetIterationTime(seconds);
    }
    std::sort(times.begin(), times.end());
    std::sort(wallTimes.begin(), wallTimes.end());
    double total = 0.0;
    for (double t : times)
        total += t;
    auto percentile = [&](double p) { return times.empty() ? 0.0 : times[size_t(p * double(times.size() - 1))]; };
    auto wallPercentile
        = [&](double p) { return wallTimes.empty() ? 0.0 : wallTimes[size_t(p * double(wallTimes.size() - 1))]; };
    const TapePageCache& cache = tape.getPageCache();
    state.counters["full_rebuild_ms"] = warmUp * 1000.0;
    state.counters["p50_ms"] = percentile(0.5) * 1000.0;
    state.counters["p99_ms"] = percentile(0.99) * 1000.0;
    state.counters["slowest_ms"] = percentile(1.0) * 1000.0;
    state.counters["wall_p99_ms"] = wallPercentile(0.99) * 1000.0;
    state.counters["wall_slowest_ms"] = wallPercentile(1.0) * 1000.0;
    state.counters["x_bound"] = total / double(std::max<size_t>(times.size(), 1)) / kFrameSeconds;
    state.counters["worst_x_bound"] = percentile(1.0) / kFrameSeconds;
    state.counters["snapshots"] = cache.snapshotCount();
    state.counters["snapshot_MB"] = double(cache.bytesUsed()) / double(1 << 20);
}
BENCHMARK(BM_StepBackOnALongTape)->Arg(1)->Iterations(5000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_StepBackOnALongTape)->Arg(0)->Iterations(20)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
