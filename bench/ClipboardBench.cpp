// What the clipboard and the undo history cost on a long story, with the
// whole program running on the fake native layer.
//
// BM_PasteThousand and BM_UndoThousand: a story of 10,000 strokes shown at
// position 5,000; pasting a clip of 1,000 strokes there (the page rebuilt
// with them), and taking that paste back. Each against the same run's
// deep copy of the 1,000 elements plus one rebuild of the page at the
// position the command leaves, from the same state of the page cache.
// Counters command_ms, bound_ms and ratio (bound 2).
//
// BM_CopyRange: copying 5,000 strokes into the clip against the tape's own
// copy of them; the bound is 1.5.

#include "app/StylusClipboard.h"
#include "app/StylusWindow.h"
#include "app/UndoHistory.h"
#include "bench/BenchProgram.h"
#include "tape/Stroke.h"
#include "tape/Tape.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

using namespace benchprogram;

namespace {

constexpr int32_t kStoryLength = 10000;
constexpr int32_t kClipLength = 1000;
constexpr int32_t kPastePosition = 5000;

// The deep copy of the clip's elements plus one rebuild at the tape's
// position, the page cache dropped from where the command changed it.
double boundMs(Tape& story, Tape& clip, int32_t changedFrom)
{
    Clock::time_point start = Clock::now();
    std::vector<TapeObjectPtr> copies;
    for (int32_t i = 0; i < clip.getCount(); ++i)
        copies.emplace_back(static_cast<TapeObject*>(clip.getAt(i)->deepCopy()));
    story.getPageCache().invalidateFrom(changedFrom);
    story.rebuildPage();
    return millisecondsSince(start);
}

struct Figures {
    double paste = 1e9;
    double pasteBound = 1e9;
    double undo = 1e9;
    double undoBound = 1e9;
};

Figures pasteAndUndo(StylusWindow& window)
{
    TapePtr story = strokeTape(kStoryLength);
    story->setPositionQuietly(kPastePosition);
    window.showTape(*story, nullptr);
    StylusClipboard& clipboard = *StylusClipboard::current();
    UndoHistory& history = *UndoHistory::current();
    clipboard.copyRange(0, kClipLength - 1, false);
    Tape& clip = clipboard.getClipTape();
    Figures figures;
    for (int round = 0; round < 5; ++round) {
        Clock::time_point start = Clock::now();
        clipboard.paste();
        figures.paste = std::min(figures.paste, millisecondsSince(start));
        figures.pasteBound = std::min(figures.pasteBound, boundMs(*story, clip, kPastePosition));

        start = Clock::now();
        history.undo(*story);
        figures.undo = std::min(figures.undo, millisecondsSince(start));
        figures.undoBound = std::min(figures.undoBound, boundMs(*story, clip, kPastePosition));
        if (story->getCount() != kStoryLength)
            std::abort();
    }
    return figures;
}

void report(benchmark::State& state, double command, double bound)
{
    state.counters["command_ms"] = command;
    state.counters["bound_ms"] = bound;
    state.counters["ratio"] = bound > 0 ? command / bound : 0;
}

void BM_PasteThousand(benchmark::State& state)
{
    KFakeNativeLayer layer;
    Figures figures;
    runProgram(layer, [&](BenchApplication&) {
        for (auto _ : state)
            figures = pasteAndUndo(*StylusWindow::current());
    });
    report(state, figures.paste, figures.pasteBound);
}

void BM_UndoThousand(benchmark::State& state)
{
    KFakeNativeLayer layer;
    Figures figures;
    runProgram(layer, [&](BenchApplication&) {
        for (auto _ : state)
            figures = pasteAndUndo(*StylusWindow::current());
    });
    report(state, figures.undo, figures.undoBound);
}

// The clip's copy of 5,000 strokes, and the tape's own copy of the same
// elements one by one.
void BM_CopyRange(benchmark::State& state)
{
    KFakeNativeLayer layer;
    double copyMs = 1e9;
    double boundMs = 1e9;
    runProgram(layer, [&](BenchApplication&) {
        TapePtr story = strokeTape(5000);
        story->setPositionQuietly(5000);
        StylusWindow::current()->showTape(*story, nullptr);
        StylusClipboard& clipboard = *StylusClipboard::current();
        for (auto _ : state) {
            for (int round = 0; round < 5; ++round) {
                Clock::time_point start = Clock::now();
                clipboard.copyRange(0, 4999, false);
                copyMs = std::min(copyMs, millisecondsSince(start));

                start = Clock::now();
                TapePtr copy = kAdopt(new Tape());
                for (int32_t i = 0; i < story->getCount(); ++i)
                    copy->add(*static_cast<TapeObject*>(story->getAt(i)->deepCopy()));
                boundMs = std::min(boundMs, millisecondsSince(start));
            }
        }
    });
    report(state, copyMs, boundMs);
}

} // namespace

BENCHMARK(BM_PasteThousand)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_UndoThousand)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CopyRange)->Iterations(1)->Unit(benchmark::kMillisecond);
