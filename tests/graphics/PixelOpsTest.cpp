#include "GraphicsTestSupport.h"

#include "graphics/KAlphaImage.h"
#include "graphics/KBoxFilter.h"
#include "graphics/KColor.h"
#include "graphics/KGraphicRegion.h"
#include "graphics/KImageTransforms.h"
#include "graphics/KMaskedFrame.h"
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
        premultiplied.pixels[8 + size_t(i)] = 0xFF000000u | (random() & 0xFFFFFF);
        premultiplied.pixels[16 + size_t(i)] = 0;
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

// Small areas are averaged whole; large ones by samples spread over them,
// so that a page's quick picture keeps its regions where they were.
TEST(PixelOps, SampledShrinkAveragesEachArea)
{
    Buffer small(3, 3);
    small.pixels = { 0, 0, 0, 0, 0x090909, 0, 0, 0, 0 };
    Buffer one(1, 1);
    KImageTransforms::sampledShrink(small.view, one.view);
    EXPECT_EQ(one.pixels[0], 0xFF010101u) << "nine pixels, all counted; the result opaque";

    // A page of 800 by 600: red left, blue right, a green band below.
    Buffer page(800, 600);
    for (int32_t y = 0; y < 600; ++y)
        for (int32_t x = 0; x < 800; ++x)
            page.pixels[size_t(y) * 800 + size_t(x)] = y >= 450 ? 0x00FF00 : x < 400 ? 0xFF0000 : 0x0000FF;
    Buffer picture(64, 48);
    KImageTransforms::sampledShrink(page.view, picture.view);
    EXPECT_EQ(picture.pixels[0] & 0xFFFFFF, 0xFF0000u);
    EXPECT_EQ(picture.pixels[31] & 0xFFFFFF, 0xFF0000u);
    EXPECT_EQ(picture.pixels[32] & 0xFFFFFF, 0x0000FFu);
    // The band begins where row 36's area begins (450); row 35's is red.
    EXPECT_EQ(picture.pixels[36 * 64 + 10] & 0xFFFFFF, 0x00FF00u);
    EXPECT_EQ(picture.pixels[47 * 64 + 63] & 0xFFFFFF, 0x00FF00u);
    EXPECT_EQ(picture.pixels[35 * 64 + 0] & 0xFFFFFF, 0xFF0000u);
}

// The vector loops of the bitwise operations against the plain formulas,
// for every width up to two vectors and a tail.
TEST(PixelOps, BitwiseRowsMatchTheFormulasAtEveryWidth)
{
    std::mt19937 random(11);
    for (int32_t width = 0; width <= 19; ++width) {
        Buffer destination(width + 2, 1), source(width + 2, 1), keep(width + 2, 1), put(width + 2, 1);
        for (int32_t i = 0; i < width + 2; ++i) {
            destination.pixels[size_t(i)] = random();
            source.pixels[size_t(i)] = random();
            keep.pixels[size_t(i)] = random();
            put.pixels[size_t(i)] = random();
        }
        const std::vector<uint32_t> original = destination.pixels;
        // One pixel in from each side: the neighbours must stay as they were.
        KPixelOps::Area area { 1, 0, 1, 0, width, 1 };
        auto check = [&](const char* what, auto&& expected) {
            for (int32_t i = 0; i < width + 2; ++i) {
                size_t k = size_t(i);
                uint32_t want = i >= 1 && i <= width ? expected(original[k], k) : original[k];
                ASSERT_EQ(destination.pixels[k], want) << what << " width " << width << " pixel " << i;
            }
            destination.pixels = original;
        };
        KPixelOps::apply(destination.view, source.view, area, KPixelOps::RasterOp::MergePaint);
        check("merge paint", [&](uint32_t d, size_t k) { return (d | ~source.pixels[k]) & 0xFFFFFFu; });
        KPixelOps::apply(destination.view, source.view, area, KPixelOps::RasterOp::And);
        check("and", [&](uint32_t d, size_t k) { return d & source.pixels[k] & 0xFFFFFFu; });
        KPixelOps::keepAndPutRow(destination.pixels.data() + 1, keep.pixels.data() + 1, put.pixels.data() + 1, width);
        check("keep and put", [&](uint32_t d, size_t k) { return ((d & keep.pixels[k]) | put.pixels[k]) & 0xFFFFFFu; });
    }
}

namespace {

// What the pair of raster operations of a masked draw gives, pixel by pixel.
uint32_t referenceMasked(uint32_t target, uint32_t image, uint32_t mask)
{
    return (target | ~mask) & image & 0xFFFFFFu;
}

// Random rows that mix the three kinds of run: white mask over white image
// (left alone), black mask (covered), and grey masks or coloured image under
// a white mask (mixed), in stretches of random length.
void fillMaskedPicture(Buffer& image, Buffer& mask, std::mt19937& random)
{
    size_t i = 0;
    while (i < image.pixels.size()) {
        int kind = int(random() % 4);
        size_t length = 1 + random() % 9;
        for (; length > 0 && i < image.pixels.size(); --length, ++i) {
            uint32_t colour = random() | 0xFF000000u;
            switch (kind) {
            case 0:
                image.pixels[i] = 0xFFFFFF;
                mask.pixels[i] = 0xFFFFFF;
                break;
            case 1:
                image.pixels[i] = colour;
                mask.pixels[i] = 0;
                break;
            case 2:
                image.pixels[i] = colour;
                mask.pixels[i] = random() & 0x7F7F7F;
                break;
            default:
                image.pixels[i] = colour;
                mask.pixels[i] = 0xFFFFFF;
                break;
            }
        }
    }
}

} // namespace

// Drawing the prepared runs gives the pixels of the two raster operations,
// wherever the picture stands (also half off the target) and whatever the
// clip; nothing outside the clip changes.
TEST(PixelOps, MaskedFrameRunsDrawAsTheRasterOperations)
{
    std::mt19937 random(3);
    const int32_t width = 23, height = 7;
    Buffer image(width, height), mask(width, height);
    fillMaskedPicture(image, mask, random);
    KMaskedFrame frame;
    frame.build(image.view, mask.view);
    ASSERT_EQ(frame.getWidth(), width);
    ASSERT_EQ(frame.getHeight(), height);
    // Left-alone pixels make no run, so there are fewer runs than pixels.
    EXPECT_LT(frame.getRunCount(), width * height);

    Buffer original(30, 12);
    for (uint32_t& p : original.pixels)
        p = random();
    struct Case {
        int32_t x, y;
        KWideRectangle clip;
    };
    const Case cases[] = {
        { 3, 2, KWideRectangle(0, 0, 30, 12) }, // wholly inside
        { -5, -3, KWideRectangle(0, 0, 30, 12) }, // off the top left
        { 20, 9, KWideRectangle(0, 0, 30, 12) }, // off the bottom right
        { 2, 1, KWideRectangle(7, 3, 5, 2) }, // a clip inside the picture
        { 2, 1, KWideRectangle(24, 0, 6, 12) }, // a clip beside it
        { 0, 0, KWideRectangle(1, 1, 1, 1) }, // a single pixel
    };
    for (const Case& c : cases) {
        Buffer target(30, 12);
        target.pixels = original.pixels;
        KWideRectangle drawn = frame.drawInto(target.view, c.x, c.y, c.clip);
        KWideRectangle expected(c.x, c.y, width, height);
        expected.intersectWith(c.clip);
        expected.intersectWith(KWideRectangle(0, 0, 30, 12));
        EXPECT_EQ(drawn, expected) << c.x << "," << c.y;
        for (int32_t y = 0; y < 12; ++y) {
            for (int32_t x = 0; x < 30; ++x) {
                size_t k = size_t(y) * 30 + size_t(x);
                uint32_t got = target.pixels[k];
                if (!expected.contains(x, y)) {
                    ASSERT_EQ(got, original.pixels[k]) << "outside, at " << x << "," << y;
                    continue;
                }
                size_t f = size_t(y - c.y) * size_t(width) + size_t(x - c.x);
                ASSERT_EQ(got & 0xFFFFFF, referenceMasked(original.pixels[k], image.pixels[f], mask.pixels[f]))
                    << "case " << c.x << "," << c.y << " at " << x << "," << y;
            }
        }
    }

    // Without a mask every pixel is covered; a mask of another size makes
    // an empty frame, which draws nothing.
    KMaskedFrame opaque;
    opaque.buildOpaque(image.view);
    Buffer target(width, height);
    EXPECT_EQ(opaque.drawInto(target.view, 0, 0, KWideRectangle(0, 0, width, height)),
              KWideRectangle(0, 0, width, height));
    for (size_t k = 0; k < target.pixels.size(); ++k)
        ASSERT_EQ(target.pixels[k], image.pixels[k] & 0xFFFFFF);
    Buffer smallMask(width - 1, height);
    KMaskedFrame mismatched;
    mismatched.build(image.view, smallMask.view);
    EXPECT_EQ(mismatched.getWidth(), 0);
    EXPECT_TRUE(mismatched.drawInto(target.view, 0, 0, KWideRectangle(0, 0, width, height)).isEmpty());
}

namespace {

KAlphaImagePtr noisyMaskedImage(int16_t width, int16_t height, uint32_t seed)
{
    std::mt19937 random(seed);
    Buffer image(width, height), mask(width, height);
    fillMaskedPicture(image, mask, random);
    KAlphaImagePtr picture(new KAlphaImage(KGraphicSize(width, height)));
    KImagePtr maskImage = gfx::makeImage(width, height);
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            gfx::setPixel(*picture, x, y, image.pixels[size_t(y) * size_t(width) + size_t(x)] & 0xFFFFFF);
            gfx::setPixel(*maskImage, x, y, mask.pixels[size_t(y) * size_t(width) + size_t(x)]);
        }
    }
    picture->setMask(*maskImage);
    return picture;
}

} // namespace

// On a device, the prepared runs give what the image's own masked drawing
// gives, under a clip of two rectangles too, and they follow changes of the
// image and the mask.
TEST_F(GraphicsTest, PreparedMaskedFramesDrawAsTheImageDoes)
{
    KAlphaImagePtr picture = noisyMaskedImage(13, 9, 21);
    KMaskedFrame frame;
    ASSERT_TRUE(frame.prepare(*picture));

    auto compare = [&](const KGraphicPoint& at, const char* what) {
        KImagePtr byImage = gfx::makeImage(24, 16), byRuns = gfx::makeImage(24, 16);
        gfx::fillNoise(*byImage, 8);
        gfx::fillNoise(*byRuns, 8);
        KGraphicRegion clip;
        clip.uniteWith(KWideRectangle(0, 0, 9, 16));
        clip.uniteWith(KWideRectangle(12, 4, 12, 5));
        byImage->getDevice().setClip(clip);
        byRuns->getDevice().setClip(clip);
        picture->drawAt(byImage->getDevice(), at);
        uint32_t changes = byRuns->getDevice().getChangeCount();
        ASSERT_TRUE(frame.drawTo(byRuns->getDevice(), at));
        EXPECT_NE(byRuns->getDevice().getChangeCount(), changes) << what;
        EXPECT_EQ(gfx::pixels(*byRuns), gfx::pixels(*byImage)) << what;
    };
    compare(KGraphicPoint(5, 3), "across both clip rectangles");
    compare(KGraphicPoint(-4, 10), "off the bottom left");

    // Painting on the image or the mask makes the runs stale.
    picture->getDevice().fillRectangle(KGraphicRectangle(0, 0, 13, 2), KColor(KColor::Red));
    ASSERT_TRUE(frame.prepare(*picture));
    compare(KGraphicPoint(5, 3), "after the image changed");
    picture->getMask()->getDevice().fillRectangle(KGraphicRectangle(0, 0, 6, 9), KColor(KColor::Black));
    ASSERT_TRUE(frame.prepare(*picture));
    compare(KGraphicPoint(5, 3), "after the mask changed");
    // So does another image altogether.
    KAlphaImagePtr other = noisyMaskedImage(13, 9, 22);
    ASSERT_TRUE(frame.prepare(*other));
    picture = other;
    compare(KGraphicPoint(1, 1), "another image");

    // Blending modes and masks of another size are not for the runs; an
    // image without a mask covers all.
    picture->setBlendMode(KAlphaImage::Constant);
    EXPECT_FALSE(frame.prepare(*picture));
    picture->setBlendMode(KAlphaImage::Masked);
    picture->setMask(*gfx::makeImage(6, 9));
    EXPECT_FALSE(frame.prepare(*picture));
    picture->clearMask();
    ASSERT_TRUE(frame.prepare(*picture));
    compare(KGraphicPoint(2, 2), "no mask");
}
