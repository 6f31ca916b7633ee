// The cost of showing a 640 by 480 movie in the page through the movie
// element and the sprite system, as a share of one core at 25 frames a
// second. The page is 1024 by 768 and the scene draws into an image where a
// window would stand.
//
// BM_MovieElementFrame: the event thread's work for one frame without the
// decoder: a decoded frame painted into the page at the element's bounds,
// the page told of it, and the scene's next frame composed. Counter
// "core_at_25fps" = that time times 25.
// BM_MovieElementPlayback: a two-second movie (50 frames, H.264 in MP4)
// played by a tape to its end, the tape ticking and the scene composing
// every 5 ms of real time. Counters: "event_thread_at_25fps" = the event
// thread's CPU time over the movie's length, "process_at_25fps" = the whole
// process's (decoding threads included), "page_refreshes" = refreshes that
// reached the page (the frames, the first page and the poster left at the
// end), "us_per_frame" = event thread time per refresh.

#include "graphics/KImage.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "kmultimedia/KMovie.h"
#include "kmultimedia/KMovieNative.h"
#include "kmultimedia/StylusSpriteSystem.h"
#include "tape/StylusMovie.h"
#include "tape/Tape.h"
#include "tape/TapeClasses.h"
#include "tape/TapePage.h"
#include "tests/kmultimedia/MovieTestSupport.h"
#include "windowing/KNativeLayer.h"
#include "windowing/testing/KFakeNativeLayer.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <ctime>
#include <vector>

namespace {

constexpr int16_t kPageWidth = 1024;
constexpr int16_t kPageHeight = 768;
constexpr int kMovieWidth = 640;
constexpr int kMovieHeight = 480;
constexpr int kMovieFrames = 50;
constexpr double kFramesPerSecond = 25.0;
const KGraphicRectangle kMovieBounds(192, 144, kMovieWidth, kMovieHeight);

double cpuSeconds(clockid_t clock)
{
    timespec now {};
    clock_gettime(clock, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

// The page as the main window's scene has it, drawing its frames into an
// image; it counts the refreshes that reach it.
class ScenePage : public TapePage {
public:
    ScenePage()
        : scene(new StylusSpriteSystem())
        , screen(new KImage(KGraphicSize(kPageWidth, kPageHeight)))
    {
        scene->setPageSize(KGraphicSize(kPageWidth, kPageHeight));
        scene->attachDevice(screen->getDevice());
    }
    ~ScenePage() override { scene->detachDevice(); }

    KImage& getPageImage() override { return *scene->getPageImage(); }
    KGraphicDevice& getPageDevice() override { return *scene->getPageDevice(); }
    KGraphicSize getPageSize() override { return scene->getPageSize(); }
    void refresh(const KGraphicRectangle& changed) override
    {
        ++refreshes;
        scene->refresh(changed);
    }
    void drawFrame() override { scene->drawFrame(); }

    int64_t refreshes = 0;

private:
    StylusSpriteSystemPtr scene;
    KImagePtr screen;
};

void setUpFramework(KFakeNativeLayer& native)
{
    setenv("TALELOOM_AUDIO", "null", 0);
    KErrorHandler::loadKernelErrors();
    KNativeLayer::install(&native);
    registerTapeClasses();
}

void BM_MovieElementFrame(benchmark::State& state)
{
    KFakeNativeLayer native;
    setUpFramework(native);
    {
        KPtr<ScenePage> page(new ScenePage());
        std::vector<uint32_t> pixels(size_t(kMovieWidth) * kMovieHeight);
        for (size_t i = 0; i < pixels.size(); ++i)
            pixels[i] = uint32_t(i * 2654435761u) & 0xFFFFFF;
        KMovieFrame frame;
        frame.pixels = pixels.data();
        frame.stride = kMovieWidth;
        frame.width = kMovieWidth;
        frame.height = kMovieHeight;
        page->drawFrame();
        double start = cpuSeconds(CLOCK_THREAD_CPUTIME_ID);
        for (auto _ : state) {
            benchmark::DoNotOptimize(KMovie::paintFrame(frame, page->getPageDevice(), kMovieBounds));
            page->refresh(kMovieBounds);
            page->drawFrame();
        }
        double perFrame = (cpuSeconds(CLOCK_THREAD_CPUTIME_ID) - start) / double(state.iterations());
        state.counters["core_at_25fps"] = perFrame * kFramesPerSecond;
    }
    KNativeLayer::install(nullptr);
}
BENCHMARK(BM_MovieElementFrame)->Unit(benchmark::kMicrosecond);

// Ticks the tape and composes the scene every 5 ms until the tape stops.
void playTape(Tape& tape, ScenePage& page, KFakeNativeLayer& native)
{
    tape.startPlaying(0);
    gint64 limit = g_get_monotonic_time() + 20 * G_USEC_PER_SEC;
    while (tape.getPlayState() != Tape::Stopped && g_get_monotonic_time() < limit) {
        native.advance(5);
        tape.handleTimer();
        page.drawFrame();
        g_usleep(5000);
    }
    tape.stopPlaying();
}

void BM_MovieElementPlayback(benchmark::State& state)
{
    KFakeNativeLayer native;
    setUpFramework(native);
    std::string error;
    std::string path = makeTestMovie(kMovieWidth, kMovieHeight, kMovieFrames, error, "element.mp4");
    if (path.empty()) {
        state.SkipWithError(error.c_str());
        KNativeLayer::install(nullptr);
        return;
    }
    {
        KPtr<ScenePage> page(new ScenePage());
        TapePtr tape(new Tape());
        tape->setSpriteSystem(*page);
        StylusMoviePtr movie(new StylusMovie());
        movie->setFile(KFileReference(KPath(KString(path.c_str()), KPath::LinuxPlatform)));
        movie->setBounds(kMovieBounds);
        tape->addElement(*movie);
        double eventThread = 0.0;
        double process = 0.0;
        double length = 0.0;
        int64_t frames = 0;
        for (auto _ : state) {
            int64_t before = page->refreshes;
            double threadStart = cpuSeconds(CLOCK_THREAD_CPUTIME_ID);
            double processStart = cpuSeconds(CLOCK_PROCESS_CPUTIME_ID);
            playTape(*tape, *page, native);
            eventThread += cpuSeconds(CLOCK_THREAD_CPUTIME_ID) - threadStart;
            process += cpuSeconds(CLOCK_PROCESS_CPUTIME_ID) - processStart;
            length += double(kMovieFrames) / kFramesPerSecond;
            frames += page->refreshes - before;
        }
        if (length > 0.0 && frames > 0) {
            state.counters["event_thread_at_25fps"] = eventThread / length;
            state.counters["process_at_25fps"] = process / length;
            state.counters["page_refreshes"] = double(frames) / double(state.iterations());
            state.counters["us_per_frame"] = eventThread / double(frames) * 1e6;
        }
        tape->clearSpriteSystem();
    }
    removeTestMovie(path);
    KNativeLayer::install(nullptr);
}
BENCHMARK(BM_MovieElementPlayback)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

} // namespace
