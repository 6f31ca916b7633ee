// The scene's composition on a 1280 by 800 page with 20 moving 128 by 128
// sprites, into an offscreen device. Each iteration moves every sprite a
// few pixels and times one incremental frame (mode 2: dirty rectangles);
// right after it, in the same run, it times the floor under that frame:
// the same dirty areas copied background to buffer to target with nothing
// drawn. The frames are masked, as actors' are; a second run with plain
// frames is there for reference. Counters: "incremental_ms" and "floor_ms"
// per frame, "ratio" = incremental / floor, "x_bound" = ratio / 1.3 (the
// bound: a frame costs at most 1.3 times its copies), "page_share" = the
// dirty areas' share of the page, and "core_at_60fps" = the incremental
// frame's share of one core at 60 frames a second.

#include "graphics/KAlphaImage.h"
#include "graphics/KColor.h"
#include "graphics/KImage.h"
#include "graphics/KPixelBuffer.h"
#include "graphics/KPixelOps.h"
#include "kernel/KErrorHandler.h"
#include "kmultimedia/KMultimediaClasses.h"
#include "kmultimedia/KSprite.h"
#include "kmultimedia/KSpriteLayer.h"
#include "kmultimedia/KSpriteSystem.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KTimerManager.h"
#include "windowing/testing/KFakeNativeLayer.h"

#include <benchmark/benchmark.h>

#include <ctime>
#include <random>
#include <vector>

namespace {

// The thread's own CPU time: the machine may be shared, and the bound is
// a share of one core.
double threadSeconds()
{
    timespec now {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

constexpr int16_t kPageWidth = 1280;
constexpr int16_t kPageHeight = 800;
constexpr int16_t kSpriteSize = 128;
constexpr int kSprites = 20;

struct Motion {
    float x;
    float y;
    float dx;
    float dy;
};

KPtr<KAlphaImage> makeFrame(const KColor& colour, bool masked)
{
    KGraphicSize size(kSpriteSize, kSpriteSize);
    KGraphicRectangle whole(0, 0, kSpriteSize, kSpriteSize);
    KPtr<KAlphaImage> frame = kAdopt(new KAlphaImage(size));
    frame->getDevice().setForeground(colour);
    frame->getDevice().fillOval(whole);
    if (!masked)
        return frame;
    KPtr<KImage> mask = kAdopt(new KImage(size));
    mask->getDevice().fillRectangle(whole, KColor(KColor::White));
    mask->getDevice().setForeground(KColor(KColor::Black));
    mask->getDevice().fillOval(whole);
    frame->setMask(*mask);
    return frame;
}

// A page with a painted background, the sprites in one layer, attached to
// an offscreen target.
struct Scene {
    Scene(KSpriteSystem::UpdateMode mode, bool masked)
        : system(kAdopt(new KSpriteSystem()))
        , target(kAdopt(new KImage(KGraphicSize(kPageWidth, kPageHeight))))
        , layer(kAdopt(new KSpriteLayer()))
    {
        system->setUpdateMode(mode);
        system->attachDevice(target->getDevice());
        KPtr<KImage> page = kAdopt(new KImage(KGraphicSize(kPageWidth, kPageHeight)));
        for (int16_t y = 0; y < kPageHeight; y += 50)
            page->getDevice().fillRectangle(KGraphicRectangle(0, y, kPageWidth, 25), KColor(KColor::Green));
        system->setBackground(*page);
        system->addLayer(*layer);
        for (int i = 0; i < kSprites; ++i) {
            KSpritePtr sprite = kAdopt(new KSprite());
            sprite->addFrame(*makeFrame(KColor(i % 2 ? KColor::Red : KColor::Blue), masked));
            layer->addSprite(*sprite);
        }
        system->redrawAll();
    }
    void place(const std::vector<Motion>& motions)
    {
        for (int i = 0; i < kSprites; ++i)
            layer->getSpriteAt(i)->setPosition(motions[size_t(i)].x, motions[size_t(i)].y);
    }
    // A frame as the timer runs it: draw, then step.
    double frameSeconds()
    {
        double start = threadSeconds();
        system->drawFrame();
        system->step(0.0f);
        return threadSeconds() - start;
    }

    KSpriteSystemPtr system;
    KPtr<KImage> target;
    KSpriteLayerPtr layer;
};

std::vector<Motion> startingMotions()
{
    std::mt19937 random(7);
    std::vector<Motion> motions;
    for (int i = 0; i < kSprites; ++i) {
        Motion m;
        m.x = float(random() % (kPageWidth - kSpriteSize));
        m.y = float(random() % (kPageHeight - kSpriteSize));
        // 2 to 5 pixels a frame: 120 to 300 pixels a second at 60 frames.
        m.dx = float(2 + random() % 4) * (random() % 2 ? 1.0f : -1.0f);
        m.dy = float(2 + random() % 4) * (random() % 2 ? 1.0f : -1.0f);
        motions.push_back(m);
    }
    return motions;
}

void advance(std::vector<Motion>& motions)
{
    for (Motion& m : motions) {
        m.x += m.dx;
        m.y += m.dy;
        if (m.x < 0 || m.x > kPageWidth - kSpriteSize)
            m.dx = -m.dx;
        if (m.y < 0 || m.y > kPageHeight - kSpriteSize)
            m.dy = -m.dy;
    }
}

// The floor: the areas copied from the background to the buffer and from
// the buffer to the target, the two copies every frame makes at the least.
void copyAreas(KImage& from, KImage& to, const std::vector<KGraphicRectangle>& areas)
{
    KPixelBuffer source, destination;
    if (!from.getDevice().beginPixelAccess(source) || !to.getDevice().beginPixelAccess(destination))
        return;
    for (const KGraphicRectangle& a : areas)
        KPixelOps::apply(destination, source, { a.x, a.y, a.x, a.y, a.width, a.height }, KPixelOps::RasterOp::Copy);
}

constexpr double kBound = 1.3;

// Argument: 1 masked frames, as actors have; 0 plain frames, for reference.
// The copies overwrite only the areas the frame just composed, which the
// next frame composes again (every sprite moves), so the scene stays whole.
void BM_SpriteFrames(benchmark::State& state)
{
    KErrorHandler::loadKernelErrors();
    KFakeNativeLayer native;
    KNativeLayer::install(&native);
    kRegisterMultimediaClasses();
    double incremental = 0;
    double floor = 0;
    double pixels = 0;
    int64_t frames = 0;
    {
        Scene scene(KSpriteSystem::Rectangles, state.range(0) != 0);
        KImage& background = *scene.system->getBackground();
        KImage& buffer = *scene.system->getOffscreen();
        std::vector<Motion> motions = startingMotions();
        for (auto _ : state) {
            advance(motions);
            scene.place(motions);
            incremental += scene.frameSeconds();
            const std::vector<KGraphicRectangle>& dirty = scene.system->getDirtyAreas();
            double start = threadSeconds();
            copyAreas(background, buffer, dirty);
            copyAreas(buffer, *scene.target, dirty);
            floor += threadSeconds() - start;
            for (const KGraphicRectangle& a : dirty)
                pixels += double(a.width) * a.height;
            ++frames;
        }
    }
    KTimerManager::destroy();
    KNativeLayer::install(nullptr);
    double incrementalFrame = incremental / double(frames);
    state.counters["incremental_ms"] = incrementalFrame * 1000.0;
    state.counters["floor_ms"] = floor / double(frames) * 1000.0;
    state.counters["ratio"] = incremental / floor;
    state.counters["x_bound"] = incremental / (kBound * floor);
    state.counters["page_share"] = pixels / double(frames) / (double(kPageWidth) * kPageHeight);
    state.counters["core_at_60fps"] = incrementalFrame * 60.0;
}
BENCHMARK(BM_SpriteFrames)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace
