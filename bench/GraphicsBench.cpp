// Each benchmark times its bound in the same run and reports the ratio as
// the counter "x_bound" (measured time / bound time).

#include "graphics/KAlphaImage.h"
#include "graphics/KGraphicsClasses.h"
#include "graphics/KImage.h"
#include "kernel/KErrorHandler.h"

#include <benchmark/benchmark.h>
#include <gdk-pixbuf/gdk-pixbuf.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <random>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kDabs = 100000;
constexpr int16_t kDabSize = 32;
constexpr int16_t kPageWidth = 800;
constexpr int16_t kPageHeight = 600;
constexpr int16_t kBlendWidth = 1280;
constexpr int16_t kBlendHeight = 800;

void setUp()
{
    static bool done = false;
    if (done)
        return;
    KErrorHandler::loadKernelErrors();
    kRegisterGraphicsClasses();
    done = true;
}

std::vector<KGraphicPoint> dabPositions()
{
    std::mt19937 random(42);
    std::vector<KGraphicPoint> points;
    for (int i = 0; i < kDabs; ++i)
        points.emplace_back(int16_t(random() % (kPageWidth - kDabSize)), int16_t(random() % (kPageHeight - kDabSize)));
    return points;
}

// The bound: the same squares filled by a plain loop over rows.
double squareLoopSeconds(KPixelBuffer pixels, const std::vector<KGraphicPoint>& points, uint32_t colour)
{
    auto start = Clock::now();
    for (const KGraphicPoint& p : points) {
        for (int y = 0; y < kDabSize; ++y)
            std::fill_n(pixels.row(p.y + y) + p.x, kDabSize, colour);
    }
    benchmark::DoNotOptimize(pixels.data);
    benchmark::ClobberMemory();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

void BM_BrushDabs(benchmark::State& state)
{
    setUp();
    KImagePtr page(new KImage(KGraphicSize(kPageWidth, kPageHeight)));
    KGraphicDevice& device = page->getDevice();
    std::vector<KGraphicPoint> points = dabPositions();
    uint32_t colour = 0x3060A0;
    device.setForeground(KColor::fromNative(colour));
    double measured = 0.0, bound = 0.0;
    for (auto _ : state) {
        auto start = Clock::now();
        for (const KGraphicPoint& p : points)
            device.fillOval(KGraphicRectangle(p.x, p.y, kDabSize, kDabSize));
        measured += std::chrono::duration<double>(Clock::now() - start).count();
        state.PauseTiming();
        KPixelBuffer pixels;
        device.beginPixelAccess(pixels);
        bound += squareLoopSeconds(pixels, points, colour ^ 0xFFFFFF);
        device.endPixelAccess(KWideRectangle(0, 0, kPageWidth, kPageHeight));
        state.ResumeTiming();
    }
    state.counters["bound_ms"] = benchmark::Counter(bound * 1000.0 / double(state.iterations()));
    state.counters["x_bound"] = benchmark::Counter(measured / bound);
}
BENCHMARK(BM_BrushDabs)->Unit(benchmark::kMillisecond)->MinTime(2.0);

// A sprite with real per-pixel alpha, as a PNG gives it: the alpha runs
// across the whole range, so every pixel is blended.
KAlphaImagePtr alphaSprite()
{
    GdkPixbuf* pixbuf = gdk_pixbuf_new(GDK_COLORSPACE_RGB, TRUE, 8, kBlendWidth, kBlendHeight);
    guint8* data = gdk_pixbuf_get_pixels(pixbuf);
    int stride = gdk_pixbuf_get_rowstride(pixbuf);
    for (int y = 0; y < kBlendHeight; ++y) {
        guint8* p = data + size_t(y) * size_t(stride);
        for (int x = 0; x < kBlendWidth; ++x, p += 4) {
            p[0] = guint8(x);
            p[1] = guint8(y);
            p[2] = guint8(x + y);
            p[3] = guint8((x * 7 + y * 3) % 256);
        }
    }
    std::filesystem::path file = std::filesystem::temp_directory_path() / "taleloom-bench-alpha.png";
    gdk_pixbuf_save(pixbuf, file.c_str(), "png", nullptr, "compression", "1", nullptr);
    g_object_unref(pixbuf);
    KAlphaImagePtr sprite(new KAlphaImage());
    sprite->createFromPath(KString(file.c_str()));
    std::filesystem::remove(file);
    sprite->setBlendMode(KAlphaImage::PerPixel);
    return sprite;
}

double memcpySeconds(std::vector<uint32_t>& to, const std::vector<uint32_t>& from)
{
    auto start = Clock::now();
    std::memcpy(to.data(), from.data(), from.size() * sizeof(uint32_t));
    benchmark::DoNotOptimize(to.data());
    benchmark::ClobberMemory();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

void runBlend(benchmark::State& state, KAlphaImage& sprite)
{
    KImagePtr target(new KImage(KGraphicSize(kBlendWidth, kBlendHeight)));
    KGraphicDevice& device = target->getDevice();
    device.fillRectangle(device.getBounds(), KColor(KColor::Blue));
    std::vector<uint32_t> from(size_t(kBlendWidth) * kBlendHeight, 0x12345678), to(from.size());
    double measured = 0.0, bound = 0.0;
    sprite.drawAt(device, KGraphicPoint(0, 0)); // builds the premultiplied form once
    for (auto _ : state) {
        auto start = Clock::now();
        sprite.drawAt(device, KGraphicPoint(0, 0));
        measured += std::chrono::duration<double>(Clock::now() - start).count();
        state.PauseTiming();
        bound += memcpySeconds(to, from);
        state.ResumeTiming();
    }
    state.counters["bound_ms"] = benchmark::Counter(bound * 1000.0 / double(state.iterations()));
    state.counters["x_bound"] = benchmark::Counter(measured / bound);
}

void BM_AlphaBlendPerPixel(benchmark::State& state)
{
    setUp();
    KAlphaImagePtr sprite = alphaSprite();
    runBlend(state, *sprite);
}
BENCHMARK(BM_AlphaBlendPerPixel)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_AlphaBlendConstant(benchmark::State& state)
{
    setUp();
    KAlphaImagePtr sprite = alphaSprite();
    sprite->setBlendMode(KAlphaImage::Constant);
    sprite->setTransparency(0.4);
    runBlend(state, *sprite);
}
BENCHMARK(BM_AlphaBlendConstant)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace
