// What the program's own commands cost a person, with the whole program
// running on the fake native layer and the sample story open.
//
// BM_PaletteStep: back and forward by the palette's buttons at the end of
// the story, with every refresh that follows (page, palette, navigation),
// against the same steps on a bare copy of the tape that draws into an
// image page. Counters: palette_ms and bare_ms (mean a step, best of 5
// rounds) and ratio, which must stay at most 1.2.
//
// BM_MenuOpen: every menu of the bar brought up to date as when the user
// opens it, in the idle state. Counters open_mean_ms, open_p95_ms,
// open_max_ms; the bound is 2 ms.
//
// BM_StrokeEnd: ending a short stroke on a story of 5,000 strokes against
// the same on a story of 10 (the mean of 40, best of 5 rounds). Counters
// long_ms, short_ms and ratio, which must stay at most 1.2: ending a
// stroke never rebuilds the page.
//
// BM_PenMove: one pen move while painting against the same segment of
// dabs plus one 32x32 frame of the brush sprite drawn on an image (bound
// 1.5). BM_OpenProject: opening the sample against its document's load
// (the story and its actors) plus one page rebuild (bound 1.3).
//
// BM_PlayLatency: Control+G to the tape's first play tick: the work of the
// loop's turns plus the time the loop waits for the tick. Counters
// play_mean_ms, play_p95_ms, play_max_ms; the bound is 50 ms.

#include "app/StylusActions.h"
#include "app/StylusApplication.h"
#include "app/StylusMenuBar.h"
#include "app/StylusWindow.h"
#include "app/ToolPalette.h"
#include "app/actors/ActorLoading.h"
#include "bench/BenchProgram.h"
#include "bench/LatencyReport.h"
#include "graphics/KImage.h"
#include "project/StylusProject.h"
#include "tape/ImageTapePage.h"
#include "tape/Stroke.h"
#include "tape/Tape.h"
#include "windowing/KEventTranslator.h"
#include "windowing/KMenu.h"
#include "windowing/KMenuEvent.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KServices.h"
#include "windowing/KTimerManager.h"
#include "windowing/KWindowingClasses.h"
#include "windowing/KWindowingServices.h"
#include "windowing/testing/KFakeNativeLayer.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <unistd.h>

namespace fs = std::filesystem;

namespace {

using namespace benchprogram;

// A deep copy of the tape, drawing into an image page and told nothing:
// the bare cost of a step.
TapePtr bareCopy(const Tape& tape) { return kAdopt(static_cast<Tape*>(tape.deepCopy())); }

constexpr int kSteps = 40;

// The mean time of a back and forward step, best of 5 rounds.
double stepMean(const std::function<void()>& back, const std::function<void()>& forward)
{
    double best = 1e9;
    for (int round = 0; round < 5; ++round) {
        Clock::time_point start = Clock::now();
        for (int i = 0; i < kSteps; ++i) {
            back();
            forward();
        }
        best = std::min(best, millisecondsSince(start) / (2 * kSteps));
    }
    return best;
}

void BM_PaletteStep(benchmark::State& state)
{
    KFakeNativeLayer layer;
    double palette = 0;
    double bare = 0;
    runProgram(layer, [&](BenchApplication& app) {
        Tape& tape = *app.getProject()->getTape();
        ToolPalette& tools = *app.getToolPalette();
        StylusActions::current()->goToEnd();
        app.turn();
        auto press = [&](int32_t id) {
            tools.getControl(id)->pressByKey();
            app.turn();
        };
        for (auto _ : state)
            palette = stepMean([&] { press(ToolPalette::BackButton); }, [&] { press(ToolPalette::ForwardButton); });

        TapePtr copy = bareCopy(tape);
        KPtr<ImageTapePage> page = kAdopt(new ImageTapePage(tape.getPageSize()));
        copy->setSpriteSystem(*page);
        copy->goToPosition(copy->getCount());
        bare = stepMean([&] { copy->stepBack(); }, [&] { copy->stepForward(); });
    });
    state.counters["palette_ms"] = palette;
    state.counters["bare_ms"] = bare;
    state.counters["ratio"] = bare > 0 ? palette / bare : 0;
}

void BM_MenuOpen(benchmark::State& state)
{
    KFakeNativeLayer layer;
    std::vector<double> times;
    runProgram(layer, [&](BenchApplication& app) {
        app.turn();
        StylusMenuBar& bar = *app.getStylusMenuBar();
        for (auto _ : state) {
            for (int round = 0; round < 50; ++round) {
                for (const KMenuPtr& menu : bar.getMenus()) {
                    KMenuEvent event(KMenuEvent::MenuOpen);
                    Clock::time_point start = Clock::now();
                    menu->doOpen(event);
                    times.push_back(millisecondsSince(start));
                }
            }
        }
    });
    report(state, "open", times);
}

// A story of `count` short strokes, shown by the main window at its end.
TapePtr strokeStory(int32_t count, StylusWindow& window)
{
    TapePtr story = strokeTape(count);
    story->setPositionQuietly(count);
    window.showTape(*story, nullptr);
    return story;
}

// The mean time of painting and ending a short stroke; the stroke is taken
// off again so that the story keeps its length.
double strokeEndMean(StylusWindow& window, Tape& story)
{
    double best = 1e9;
    for (int round = 0; round < 5; ++round) {
        double total = 0;
        for (int i = 0; i < 40; ++i) {
            window.startStroke(KGraphicPoint(100, 100), false);
            for (int16_t step = 1; step <= 5; ++step)
                window.continueStroke(KGraphicPoint(int16_t(100 + 8 * step), int16_t(100 + 4 * step)), false);
            Clock::time_point start = Clock::now();
            window.endStroke(KGraphicPoint(150, 125), false);
            total += millisecondsSince(start);
            story.removeRange(story.getCount() - 1, story.getCount() - 1);
        }
        best = std::min(best, total / 40);
    }
    return best;
}

void BM_StrokeEnd(benchmark::State& state)
{
    KFakeNativeLayer layer;
    double longMs = 0;
    double shortMs = 0;
    runProgram(layer, [&](BenchApplication&) {
        StylusWindow& window = *StylusWindow::current();
        for (auto _ : state) {
            TapePtr shortStory = strokeStory(10, window);
            shortMs = strokeEndMean(window, *shortStory);
            TapePtr longStory = strokeStory(5000, window);
            longMs = strokeEndMean(window, *longStory);
        }
    });
    state.counters["long_ms"] = longMs;
    state.counters["short_ms"] = shortMs;
    state.counters["ratio"] = shortMs > 0 ? longMs / shortMs : 0;
}

void BM_PlayLatency(benchmark::State& state)
{
    KFakeNativeLayer layer;
    std::vector<double> times;
    runProgram(layer, [&](BenchApplication& app) {
        Tape& tape = *app.getProject()->getTape();
        void* window = StylusWindow::current()->getNativeWindow();
        for (auto _ : state) {
            for (int round = 0; round < 30; ++round) {
                StylusActions::current()->goToBeginning();
                app.turn();
                uint32_t clockStart = layer.now();
                Clock::time_point start = Clock::now();
                layer.typeAccelerator(window, 'G');
                // The first tick has run when an element is playing or the
                // tape has gone past one; the fake clock counts the loop's
                // waiting for the tick.
                auto ticked = [&] { return tape.getPlayingObject() != nullptr || tape.getPlayIndex() > 0; };
                while (tape.isPlaying() && !ticked() && layer.now() - clockStart < 1000) {
                    app.turn();
                    if (!ticked())
                        layer.advance(1);
                }
                times.push_back(millisecondsSince(start) + double(layer.now() - clockStart));
                StylusActions::current()->stopPlay();
                app.turn();
            }
        }
    });
    report(state, "play", times);
}

// One pen move of a stroke being painted, against drawing the same segment
// of dabs on a page of the same size plus one 32x32 frame of the brush
// sprite (the brush's square taken from the page and put back). Best mean
// of 5 rounds of 200 moves; the ratio must stay at most 1.5.
double penMoveMean(StylusWindow& window)
{
    double best = 1e9;
    for (int round = 0; round < 5; ++round) {
        window.startStroke(KGraphicPoint(100, 100), false);
        Clock::time_point start = Clock::now();
        for (int i = 1; i <= 200; ++i)
            window.continueStroke(KGraphicPoint(int16_t(100 + (i % 50) * 8), int16_t(100 + (i % 25) * 4)), false);
        best = std::min(best, millisecondsSince(start) / 200);
        window.endStroke(KGraphicPoint(100, 100), false);
        Tape& story = *StylusActions::current()->getProject()->getTape();
        story.removeRange(story.getCount() - 1, story.getCount() - 1);
    }
    return best;
}

double bareSegmentMean(int16_t brush)
{
    KImagePtr page(new KImage(KGraphicSize(800, 600)));
    KImagePtr square(new KImage(KGraphicSize(32, 32)));
    double best = 1e9;
    for (int round = 0; round < 5; ++round) {
        Clock::time_point start = Clock::now();
        for (int i = 1; i <= 200; ++i) {
            KGraphicPoint from(int16_t(100 + ((i - 1) % 50) * 8), int16_t(100 + ((i - 1) % 25) * 4));
            KGraphicPoint to(int16_t(100 + (i % 50) * 8), int16_t(100 + (i % 25) * 4));
            Stroke::drawDabLine(page->getDevice(), from, to, brush, nullptr);
            KGraphicRectangle spot(int16_t(to.x - 16), int16_t(to.y - 16), 32, 32);
            page->getDevice().copyTo(square->getDevice(), spot, KGraphicRectangle(0, 0, 32, 32));
            square->getDevice().copyTo(page->getDevice(), KGraphicRectangle(0, 0, 32, 32), spot);
        }
        best = std::min(best, millisecondsSince(start) / 200);
    }
    return best;
}

void BM_PenMove(benchmark::State& state)
{
    KFakeNativeLayer layer;
    double moveMs = 0;
    double bareMs = 0;
    runProgram(layer, [&](BenchApplication&) {
        StylusWindow& window = *StylusWindow::current();
        TapePtr story = strokeStory(10, window);
        for (auto _ : state) {
            moveMs = penMoveMean(window);
            bareMs = bareSegmentMean(Stroke::kDefaultBrushSize);
        }
    });
    state.counters["move_ms"] = moveMs;
    state.counters["bare_ms"] = bareMs;
    state.counters["ratio"] = bareMs > 0 ? moveMs / bareMs : 0;
}

// Opening the sample story from the File menu's command, against loading
// its document (the story and the actor files it names) and rebuilding one
// page at its position on an image page.
// Best of 10; the ratio must stay at most 1.3.
void BM_OpenProject(benchmark::State& state)
{
    KFakeNativeLayer layer;
    double openMs = 1e9;
    double boundMs = 1e9;
    runProgram(layer, [&](BenchApplication& app) {
        KFileReference file = *app.getProject()->getFile();
        for (auto _ : state) {
            for (int round = 0; round < 10; ++round) {
                Clock::time_point start = Clock::now();
                if (!StylusActions::current()->openProject(file))
                    std::abort();
                openMs = std::min(openMs, millisecondsSince(start));
                app.turn();

                start = Clock::now();
                StylusProjectPtr project(new StylusProject());
                if (!project->load(file))
                    std::abort();
                Tape& tape = *project->getTape();
                if (KDirectory* actors = project->getActorsDirectory())
                    loadTapeActors(tape, *actors);
                ImageTapePagePtr page(new ImageTapePage(tape.getPageSize()));
                tape.setSpriteSystem(*page);
                tape.rebuildPage();
                boundMs = std::min(boundMs, millisecondsSince(start));
                tape.clearSpriteSystem();
            }
        }
    });
    state.counters["open_ms"] = openMs;
    state.counters["bound_ms"] = boundMs;
    state.counters["ratio"] = boundMs > 0 ? openMs / boundMs : 0;
}

} // namespace

BENCHMARK(BM_PenMove)->Iterations(1);
BENCHMARK(BM_OpenProject)->Iterations(1);
BENCHMARK(BM_PaletteStep)->Iterations(1);
BENCHMARK(BM_MenuOpen)->Iterations(1);
BENCHMARK(BM_StrokeEnd)->Iterations(1);
BENCHMARK(BM_PlayLatency)->Iterations(1);
