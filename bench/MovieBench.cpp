// The cost of showing a 640 by 480 movie in a 1280 by 800 page, as a share
// of one core at 25 frames a second.
//
// BM_MovieFramePaint: the event thread's work for one frame, painting a
// decoded frame into the page at its natural size. Counter "core_at_25fps"
// = that time times 25.
// BM_MoviePlayback: a two-second movie (50 frames, H.264 in MP4) played to
// its end through the media manager's idle passes, one every 5 ms as in the
// event loop. Counters: "event_thread_at_25fps" = the event thread's CPU time
// over the movie's length (frame taking, painting, idle passes), and
// "process_at_25fps" = the whole process's CPU time over the same length,
// decoding threads included; "frames" = frames painted.

#include "graphics/KImage.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "kmultimedia/KMediaManager.h"
#include "kmultimedia/KMovie.h"
#include "kmultimedia/KMovieSupport.h"
#include "kmultimedia/KMultimediaClasses.h"
#include "tests/kmultimedia/MovieTestSupport.h"
#include "windowing/KNativeLayer.h"
#include "windowing/testing/KFakeNativeLayer.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <ctime>
#include <vector>

namespace {

double cpuSeconds(clockid_t clock)
{
    timespec now {};
    clock_gettime(clock, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

constexpr int kMovieWidth = 640;
constexpr int kMovieHeight = 480;
constexpr int kMovieFrames = 50;
constexpr double kFramesPerSecond = 25.0;

void setUpFramework(KFakeNativeLayer& native)
{
    setenv("TALELOOM_AUDIO", "null", 0);
    KErrorHandler::loadKernelErrors();
    KNativeLayer::install(&native);
    kRegisterMultimediaClasses();
}

void BM_MovieFramePaint(benchmark::State& state)
{
    KFakeNativeLayer native;
    setUpFramework(native);
    {
        KPtr<KImage> page(new KImage(KGraphicSize(1280, 800)));
        std::vector<uint32_t> pixels(size_t(kMovieWidth) * kMovieHeight);
        for (size_t i = 0; i < pixels.size(); ++i)
            pixels[i] = uint32_t(i * 2654435761u) & 0xFFFFFF;
        KMovieFrame frame;
        frame.pixels = pixels.data();
        frame.stride = kMovieWidth;
        frame.width = kMovieWidth;
        frame.height = kMovieHeight;
        KGraphicRectangle where(300, 160, kMovieWidth, kMovieHeight);
        double start = cpuSeconds(CLOCK_THREAD_CPUTIME_ID);
        for (auto _ : state)
            benchmark::DoNotOptimize(KMovie::paintFrame(frame, page->getDevice(), where));
        double perFrame = (cpuSeconds(CLOCK_THREAD_CPUTIME_ID) - start) / double(state.iterations());
        state.counters["core_at_25fps"] = perFrame * kFramesPerSecond;
    }
    KNativeLayer::install(nullptr);
}
BENCHMARK(BM_MovieFramePaint)->Unit(benchmark::kMicrosecond);

void BM_MoviePlayback(benchmark::State& state)
{
    KFakeNativeLayer native;
    setUpFramework(native);
    std::string error;
    std::string path = makeTestMovie(kMovieWidth, kMovieHeight, kMovieFrames, error, "bench.mp4");
    if (path.empty()) {
        state.SkipWithError(error.c_str());
        KNativeLayer::install(nullptr);
        return;
    }
    {
        KMediaManagerPtr manager(new KMediaManager());
        KPtr<KMovieSupport> support(new KMovieSupport());
        manager->setSupport(KMediaManager::MovieSupport, support.get());
        manager->setUp(KMediaManager::MovieSupport);
        KPtr<KImage> page(new KImage(KGraphicSize(1280, 800)));
        double eventThread = 0.0;
        double process = 0.0;
        double length = 0.0;
        int64_t frames = 0;
        for (auto _ : state) {
            KMoviePtr movie(new KMovie());
            movie->setFile(KFileReference(KPath(KString(path.c_str()), KPath::LinuxPlatform)));
            movie->setTargetDevice(page->getDevice());
            movie->setRectangle(KGraphicRectangle(300, 160, kMovieWidth, kMovieHeight));
            if (!movie->load()) {
                state.SkipWithError("the movie did not load");
                break;
            }
            double threadStart = cpuSeconds(CLOCK_THREAD_CPUTIME_ID);
            double processStart = cpuSeconds(CLOCK_PROCESS_CPUTIME_ID);
            movie->play();
            gint64 limit = g_get_monotonic_time() + 20 * G_USEC_PER_SEC;
            while (movie->isPlaying() && g_get_monotonic_time() < limit) {
                manager->idle();
                g_usleep(5000);
            }
            eventThread += cpuSeconds(CLOCK_THREAD_CPUTIME_ID) - threadStart;
            process += cpuSeconds(CLOCK_PROCESS_CPUTIME_ID) - processStart;
            length += double(kMovieFrames) / kFramesPerSecond;
            frames += movie->getFramesShown();
            movie->unload();
        }
        if (length > 0.0) {
            state.counters["event_thread_at_25fps"] = eventThread / length;
            state.counters["process_at_25fps"] = process / length;
            state.counters["frames"] = double(frames) / double(state.iterations());
        }
        manager->closeMediaSupport();
    }
    removeTestMovie(path);
    KNativeLayer::install(nullptr);
}
BENCHMARK(BM_MoviePlayback)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

} // namespace
