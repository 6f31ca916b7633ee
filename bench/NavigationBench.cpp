// What walking with the navigation tool costs.
//
// BM_NavigationScrollBar: 1,000 scroll-bar changes on a 10,000-element tape
// with a page, each handled as the user's change is. Counters: change_mean_ms,
// change_p95_ms, change_max_ms, and page_rebuilds, the rebuilds and page
// refreshes the changes caused, which must stay 0.
//
// BM_NavigationFilteredSearch: a forward search with the actor filter over
// 100,000 elements whose only actor element is the last, against a plain
// loop over the elements' types. Counters: filtered_ms, plain_ms (the best
// of 20 runs each) and ratio, which must stay at most 2.

#include "app/NavigationControl.h"
#include "app/StylusApplication.h"
#include "bench/LatencyReport.h"
#include "tape/ImageTapePage.h"
#include "tape/Tape.h"
#include "tape/TapeObject.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KNativeLayer.h"
#include "windowing/testing/KFakeNativeLayer.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

TapePtr makeTape(int32_t count, int32_t lastType)
{
    constexpr int32_t kTypes[] = { StrokeType, TextType, SoundType, WaitType, PauseType, ImageType };
    TapePtr tape = kAdopt(new Tape());
    for (int32_t i = 0; i < count; ++i) {
        TapeObjectPtr element = kAdopt(new TapeObject());
        element->setType(i == count - 1 ? lastType : kTypes[i % 6]);
        tape->add(*element);
    }
    return tape;
}

void BM_NavigationScrollBar(benchmark::State& state)
{
    KFakeNativeLayer layer;
    KNativeLayer::install(&layer);
    StylusApplication::registerClasses();
    TapePtr tape = makeTape(10000, StrokeType);
    KPtr<ImageTapePage> page = kAdopt(new ImageTapePage(KGraphicSize(640, 480)));
    tape->setSpriteSystem(*page);
    tape->setPositionQuietly(tape->getCount());
    NavigationControlPtr navigation = kAdopt(new NavigationControl());
    navigation->setTape(tape.get());
    KScrollBarNativeControl& bar = navigation->getScrollBar();
    std::vector<double> times;
    int64_t rebuilds = 0;
    for (auto _ : state) {
        times.clear();
        int32_t before = tape->getPageCache().getHits() + tape->getPageCache().getMisses() + page->getRefreshCount();
        for (int32_t i = 0; i < 1000; ++i) {
            Clock::time_point start = Clock::now();
            bar.setValue((i * 7919) % 10001);
            KControlActionEvent change(KControlActionEvent::Changed, &bar);
            navigation->doControlAction(change);
            times.push_back(millisecondsSince(start));
        }
        rebuilds
            += tape->getPageCache().getHits() + tape->getPageCache().getMisses() + page->getRefreshCount() - before;
    }
    report(state, "change", times);
    state.counters["page_rebuilds"] = double(rebuilds);
    navigation->setTape(nullptr);
    tape->clearSpriteSystem();
    KNativeLayer::install(nullptr);
}

void BM_NavigationFilteredSearch(benchmark::State& state)
{
    TapePtr tape = makeTape(100000, ActorMotionType);
    double filtered = 1e9;
    double plain = 1e9;
    int64_t found = 0;
    for (auto _ : state) {
        for (int run = 0; run < 20; ++run) {
            Clock::time_point start = Clock::now();
            int32_t p = NavigationControl::findForward(*tape, 0, ActorActionType);
            filtered = std::min(filtered, millisecondsSince(start));
            benchmark::DoNotOptimize(p);
            found += p;

            start = Clock::now();
            int32_t match = -1;
            for (int32_t i = 0; i < tape->getCount() && match < 0; ++i) {
                if (tape->getAt(i)->getType() == ActorMotionType)
                    match = i + 1;
            }
            plain = std::min(plain, millisecondsSince(start));
            benchmark::DoNotOptimize(match);
        }
    }
    state.counters["filtered_ms"] = filtered;
    state.counters["plain_ms"] = plain;
    state.counters["ratio"] = plain > 0 ? filtered / plain : 0;
    benchmark::DoNotOptimize(found);
}

} // namespace

BENCHMARK(BM_NavigationScrollBar)->Iterations(1);
BENCHMARK(BM_NavigationFilteredSearch)->Iterations(1);
