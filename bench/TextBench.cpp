// Lighting a word while the text is read aloud: on each tick with a new
// word, the text element repaints its background and draws its laid-out
// text with the word marked. The bound is a quarter of the tape's 20 ms
// tick; the counter "x_bound" is the measured time over the bound. Times
// are the thread's processor time, so that other programs on a busy machine
// do not count; the wall-clock figures are reported beside them.

#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicsClasses.h"
#include "graphics/KImage.h"
#include "graphics/KTextBlock.h"
#include "graphics/KTextBlockObject.h"
#include "kernel/KErrorHandler.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <utility>
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
constexpr double kBoundSeconds = 0.020 / 4;
// The text element's bounds on the page.
constexpr int16_t kTextX = 100;
constexpr int16_t kTextY = 150;
constexpr int16_t kTextWidth = 600;
constexpr int16_t kTextHeight = 200;

const char* kStory = "Once upon a time a little fox lived at the edge of a great green wood. Every morning she "
                     "ran down to the river to watch the fish jump, and every evening she told the owl what she "
                     "had seen. One day the river was gone.";

void setUp()
{
    static bool done = false;
    if (done)
        return;
    KErrorHandler::loadKernelErrors();
    kRegisterGraphicsClasses();
    done = true;
}

// Start and length of every word, as speech reports them.
std::vector<std::pair<int32_t, int32_t>> wordsOf(const KString& text)
{
    std::vector<std::pair<int32_t, int32_t>> words;
    int32_t start = -1;
    for (int32_t i = 0; i <= text.getLength(); ++i) {
        char c = i < text.getLength() ? text.charAt(i) : ' ';
        bool letter = c != ' ' && c != '\r';
        if (letter && start < 0)
            start = i;
        else if (!letter && start >= 0) {
            words.emplace_back(start, i - start);
            start = -1;
        }
    }
    return words;
}

// Arg 0: an opaque text, whose background is a fill; arg 1: a transparent
// one, whose background comes back from the page saved under it.
void BM_RepaintLitWord(benchmark::State& state)
{
    setUp();
    const KGraphicRectangle bounds(kTextX, kTextY, kTextWidth, kTextHeight);
    bool transparent = state.range(0) != 0;
    KImagePtr page(new KImage(KGraphicSize(kPageWidth, kPageHeight)));
    KGraphicDevice& device = page->getDevice();
    device.fillRectangle(KGraphicRectangle(0, 0, kPageWidth, kPageHeight), KColor(0xC000, 0xE000, 0xFF00));
    KImagePtr saved(new KImage(bounds.getSize()));
    device.copyTo(saved->getDevice(), bounds, KGraphicRectangle(0, 0, bounds.width, bounds.height));

    KTextBlock block { KString(kStory) };
    KTextBlockObjectPtr text(new KTextBlockObject(block));
    text->setWidth(bounds.width);
    text->setSingleLineMode(KTextBlockObject::SingleLineMarks);
    text->setSelectionColour(KColor(KColor::Yellow));
    text->layout();
    std::vector<std::pair<int32_t, int32_t>> words = wordsOf(block.getPlainText());
    KColor background(KColor::White);

    size_t next = 0;
    double total = 0.0;
    double wallTotal = 0.0;
    int64_t repaints = 0;
    for (auto _ : state) {
        auto [start, length] = words[next++ % words.size()];
        auto wallStart = Clock::now();
        double begin = threadSeconds();
        if (transparent)
            saved->drawIn(device, bounds);
        else
            device.fillRectangle(bounds, background);
        text->setSelection(start, length);
        text->drawIn(device, bounds);
        double seconds = threadSeconds() - begin;
        wallTotal += std::chrono::duration<double>(Clock::now() - wallStart).count();
        total += seconds;
        ++repaints;
        state.SetIterationTime(seconds);
    }
    double perRepaint = total / double(std::max<int64_t>(repaints, 1));
    state.counters["lines"] = double(text->getLineCount());
    state.counters["repaint_ms"] = perRepaint * 1000.0;
    state.counters["wall_repaint_ms"] = wallTotal / double(std::max<int64_t>(repaints, 1)) * 1000.0;
    state.counters["x_bound"] = perRepaint / kBoundSeconds;
}
BENCHMARK(BM_RepaintLitWord)->Arg(0)->Arg(1)->UseManualTime()->Unit(benchmark::kMillisecond);

// Laying the block out anew, as drawing a text element on a page does.
void BM_LayOutBlock(benchmark::State& state)
{
    setUp();
    KTextBlock block { KString(kStory) };
    double total = 0.0;
    int64_t layouts = 0;
    for (auto _ : state) {
        double begin = threadSeconds();
        KTextBlockObjectPtr text(new KTextBlockObject(block));
        text->setWidth(kTextWidth);
        text->layout();
        double seconds = threadSeconds() - begin;
        total += seconds;
        ++layouts;
        state.SetIterationTime(seconds);
    }
    double perLayout = total / double(std::max<int64_t>(layouts, 1));
    state.counters["layout_ms"] = perLayout * 1000.0;
    state.counters["x_bound"] = perLayout / kBoundSeconds;
}
BENCHMARK(BM_LayOutBlock)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
