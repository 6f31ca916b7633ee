#include "graphics/KBoxFilter.h"
#include "graphics/KPixelOps.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

uint32_t nearestDivide255(uint32_t x) { return (x + 127) / 255; }

uint32_t channelOf(uint32_t p, int k) { return (p >> (8 * k)) & 0xFF; }

uint32_t referenceOver(uint32_t source, uint32_t destination, uint32_t alpha)
{
    uint32_t s[4];
    for (int k = 0; k < 4; ++k)
        s[k] = alpha == 255 ? channelOf(source, k) : nearestDivide255(channelOf(source, k) * alpha);
    uint32_t result = 0;
    for (int k = 0; k < 3; ++k)
        result |= (s[k] + nearestDivide255(channelOf(destination, k) * (255 - s[3]))) << (8 * k);
    return result;
}

uint32_t referenceMix(uint32_t source, uint32_t destination, uint32_t alpha)
{
    uint32_t result = 0;
    for (int k = 0; k < 3; ++k)
        result |= nearestDivide255(channelOf(source, k) * alpha + channelOf(destination, k) * (255 - alpha)) << (8 * k);
    return result;
}

struct Buffer {
    Buffer(int32_t width, int32_t height)
        : pixels(size_t(width) * size_t(height))
        , view { pixels.data(), width, width, height }
    {
    }
    std::vector<uint32_t> pixels;
    KPixelBuffer view;
};

} // namespace

// The vector paths take four or eight pixels at a time; rows of odd widths
// check them and their tails against the plain formulas.
TEST(PixelOps, BlendsMatchTheFormulas)
{
    std::mt19937 random(5);
    const int32_t width = 37, height = 3;
    Buffer source(width, height), premultiplied(width, height), original(width, height);
    for (size_t i = 0; i < source.pixels.size(); ++i) {
        source.pixels[i] = random() & 0xFFFFFF;
        original.pixels[i] = random();
        uint32_t a = random() % 4 == 0 ? 255 : (random() % 4 == 0 ? 0 : random() & 0xFF);
        premultiplied.pixels[i] = KPixelOps::premultiply(random() & 0xFFFFFF, uint8_t(a));
    }
    // Runs of opaque and of empty pixels take the shortcuts.
    for (int i = 0; i < 8; ++i) {
        premultiplied.pixels[size_t(8 + i)] = 0xFF000000u | (random() & 0xFFFFFF);
        premultiplied.pixels[size_t(16 + i)] = 0;
    }
    KPixelOps::Area area { 0, 0, 0, 0, width, height };
    for (uint32_t alpha : { 255u, 254u, 128u, 1u }) {
        Buffer target(width, height);
        target.pixels = original.pixels;
        KPixelOps::blendPremultiplied(target.view, premultiplied.view, area, uint8_t(alpha));
        for (size_t i = 0; i < target.pixels.size(); ++i)
            ASSERT_EQ(target.pixels[i] & 0xFFFFFF, referenceOver(premultiplied.pixels[i], original.pixels[i], alpha))
                << "alpha " << alpha << " pixel " << i;

        target.pixels = original.pixels;
        KPixelOps::blendConstant(target.view, source.view, area, uint8_t(alpha));
        for (size_t i = 0; i < target.pixels.size(); ++i)
            ASSERT_EQ(target.pixels[i] & 0xFFFFFF, referenceMix(source.pixels[i], original.pixels[i], alpha))
                << "alpha " << alpha << " pixel " << i;
    }
    EXPECT_EQ(KPixelOps::premultiply(0xFF8040, 128), 0x80804020u);
}

TEST(PixelOps, RunsAndRasterOperations)
{
    for (int32_t n = 0; n < 11; ++n) {
        std::vector<uint32_t> row(12, 0x123456);
        KPixelOps::fillRun(row.data() + 1, n, 0xABCDEF);
        KPixelOps::invertRun(row.data() + 1, n);
        for (int32_t i = 0; i < 12; ++i)
            EXPECT_EQ(row[size_t(i)], i >= 1 && i <= n ? 0x543210u : 0x123456u) << n << " " << i;
    }
    Buffer destination(2, 1), source(2, 1);
    destination.pixels = { 0x0000FF, 0xFF0000 };
    source.pixels = { 0xFFFFFF, 0x000000 };
    KPixelOps::apply(destination.view, source.view, { 0, 0, 0, 0, 2, 1 }, KPixelOps::RasterOp::MergePaint);
    EXPECT_EQ(destination.pixels, (std::vector<uint32_t> { 0x0000FF, 0xFFFFFF }));
    source.pixels = { 0x00FFFF, 0x00FF00 };
    KPixelOps::apply(destination.view, source.view, { 0, 0, 0, 0, 2, 1 }, KPixelOps::RasterOp::And);
    EXPECT_EQ(destination.pixels, (std::vector<uint32_t> { 0x0000FF, 0x00FF00 }));
}

TEST(PixelOps, BoxFilterWeighsByArea)
{
    Buffer source(3, 1);
    source.pixels = { 0x000000, 0xFFFFFF, 0x000000 };
    Buffer out(2, 1);
    KBoxFilter::stretch(source.view, { 0, 0, 3, 1 }, { 0, 0, 2, 1 }, { 0, 0, 2, 1 }, out.view);
    EXPECT_EQ(out.pixels, (std::vector<uint32_t> { 0x555555, 0x555555 })) << "each covers a pixel and a half";

    Buffer wide(6, 2);
    KBoxFilter::stretch(source.view, { 0, 0, 3, 1 }, { 10, 20, 6, 2 }, { 10, 20, 6, 2 }, wide.view);
    EXPECT_EQ(wide.pixels, (std::vector<uint32_t> { 0, 0, 0xFFFFFF, 0xFFFFFF, 0, 0, 0, 0, 0xFFFFFF, 0xFFFFFF, 0, 0 }))
        << "whole factors repeat pixels";

    // Only the visible part is computed.
    Buffer part(2, 1);
    KBoxFilter::stretch(source.view, { 0, 0, 3, 1 }, { 10, 20, 6, 2 }, { 12, 21, 2, 1 }, part.view);
    EXPECT_EQ(part.pixels, (std::vector<uint32_t> { 0xFFFFFF, 0xFFFFFF }));

    KWideRectangle from(-2, 0, 4, 1), to(0, 0, 8, 2);
    ASSERT_TRUE(KBoxFilter::clipToSource({ 0, 0, 3, 1 }, from, to));
    EXPECT_EQ(from, KWideRectangle(0, 0, 2, 1));
    EXPECT_EQ(to, KWideRectangle(4, 0, 4, 2));
    KWideRectangle away(5, 5, 2, 2), target(0, 0, 4, 4);
    EXPECT_FALSE(KBoxFilter::clipToSource({ 0, 0, 3, 1 }, away, target));
}
