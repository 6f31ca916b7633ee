#include "graphics/KAlphaImage.h"
#include "graphics/KImage.h"
#include "graphics/KPattern.h"
#include "graphics/native/KNativeDevice.h"
#include "tests/graphics/GraphicsTestSupport.h"
#include "tests/support/TestSupport.h"

#include <cairo.h>
#include <gtest/gtest.h>

using namespace gfx;

using ImageTest = GraphicsTest;

namespace {

KImagePtr row(std::initializer_list<uint32_t> values)
{
    KImagePtr image = makeImage(int16_t(values.size()), 1);
    int x = 0;
    for (uint32_t v : values)
        setPixel(*image, x++, 0, v);
    return image;
}

std::vector<uint32_t> drawnOver(KImage& image, uint32_t background)
{
    KImagePtr target = makeImage(image.getSize().width, image.getSize().height);
    fill(*target, background);
    image.drawAt(target->getDevice(), KGraphicPoint(0, 0));
    return pixels(*target);
}

} // namespace

TEST_F(ImageTest, TurnsAndFlipsMovePixelsExactly)
{
    KImagePtr original = makeImage(5, 3);
    fillNoise(*original, 21);
    auto turned = [&](auto operation) {
        KImagePtr copy(static_cast<KImage*>(original->deepCopy()));
        operation(*copy);
        return copy;
    };
    KImagePtr left = turned([](KImage& i) { i.rotateLeft(); });
    KImagePtr right = turned([](KImage& i) { i.rotateRight(); });
    KImagePtr half = turned([](KImage& i) { i.rotateHalf(); });
    KImagePtr flippedH = turned([](KImage& i) { i.flipHorizontal(); });
    KImagePtr flippedV = turned([](KImage& i) { i.flipVertical(); });
    ASSERT_EQ(left->getSize(), KGraphicSize(3, 5));
    ASSERT_EQ(right->getSize(), KGraphicSize(3, 5));
    EXPECT_EQ(left->getDevice().getBounds(), KGraphicRectangle(0, 0, 3, 5));
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 5; ++x) {
            uint32_t p = pixel(*original, x, y);
            EXPECT_EQ(pixel(*left, y, 4 - x), p);
            EXPECT_EQ(pixel(*right, 2 - y, x), p);
            EXPECT_EQ(pixel(*half, 4 - x, 2 - y), p);
            EXPECT_EQ(pixel(*flippedH, 4 - x, y), p);
            EXPECT_EQ(pixel(*flippedV, x, 2 - y), p);
        }
    }
    EXPECT_EQ(pixels(*turned([](KImage& i) { i.rotateBy(90.0); })), pixels(*left));
    EXPECT_EQ(pixels(*turned([](KImage& i) { i.rotateBy(-90.0); })), pixels(*right));
    EXPECT_EQ(pixels(*turned([](KImage& i) { i.rotateBy(720.0); })), pixels(*original));

    KImagePtr slanted = turned([](KImage& i) { i.rotateBy(45.0); });
    EXPECT_EQ(slanted->getSize(), KGraphicSize(6, 6));
    EXPECT_EQ(pixel(*slanted, 0, 0), kBlack) << "uncovered corners are black";

    KImagePtr sheared = turned([](KImage& i) { i.shearHorizontal(1.0); });
    EXPECT_EQ(sheared->getSize(), KGraphicSize(7, 3));
    EXPECT_EQ(pixel(*sheared, 0, 0), pixel(*original, 0, 0));
    EXPECT_EQ(pixel(*sheared, 2, 2), pixel(*original, 0, 2));
    EXPECT_EQ(pixel(*sheared, 0, 2), kBlack);
    KImagePtr backwards = turned([](KImage& i) { i.shearHorizontal(-1.0); });
    EXPECT_EQ(pixel(*backwards, 2, 0), pixel(*original, 0, 0));
    EXPECT_EQ(pixel(*backwards, 0, 2), pixel(*original, 0, 2));

    // Operations on an empty image do nothing.
    KImagePtr empty(new KImage());
    {
        ErrorRecorder errors;
        EXPECT_EQ(empty->getNativeImage(), nullptr);
        EXPECT_EQ(errors.lastCode(), KError::PointerNull);
    }
    empty->rotateLeft();
    empty->invert();
    empty->smooth();
    empty->rotateBy(30.0);
    EXPECT_FALSE(empty->hasImage());
}

TEST_F(ImageTest, MasksSmoothingAndInversion)
{
    KImagePtr image = row({ 0xFFFFFF, 0xF0F0F0, 0xEFFFFF, 0x000000 });
    KImagePtr strict(static_cast<KImage*>(image->deepCopy()));
    strict->makeThresholdMask(65535);
    EXPECT_EQ(pixels(*strict), (std::vector<uint32_t> { kWhite, kBlack, kBlack, kBlack }));
    KImagePtr loose(static_cast<KImage*>(image->deepCopy()));
    loose->makeThresholdMask(0xF000);
    EXPECT_EQ(pixels(*loose), (std::vector<uint32_t> { kWhite, kWhite, kBlack, kBlack }));

    KImagePtr dot = makeImage(5, 5);
    setPixel(*dot, 2, 2, kWhite);
    dot->smooth();
    EXPECT_EQ(pixel(*dot, 1, 1), 0x1C1C1Cu);
    EXPECT_EQ(pixel(*dot, 2, 2), 0x1C1C1Cu);
    EXPECT_EQ(pixel(*dot, 0, 0), kBlack);

    KImagePtr blurred = makeImage(6, 6);
    blurred->getDevice().fillRectangle(KGraphicRectangle(0, 0, 3, 6), KColor(KColor::White));
    blurred->makeBlurredMask(65535);
    uint32_t edge = pixel(*blurred, 3, 3);
    EXPECT_GT(edge, 0u);
    EXPECT_LT(edge, kWhite) << "the edge is soft";
    EXPECT_EQ(pixel(*blurred, 0, 3), kWhite);
    EXPECT_EQ(pixel(*blurred, 5, 3), kBlack);

    KImagePtr noisy = makeImage(7, 4);
    fillNoise(*noisy, 9);
    std::vector<uint32_t> before = pixels(*noisy);
    noisy->invert();
    std::vector<uint32_t> after = pixels(*noisy);
    for (size_t i = 0; i < before.size(); ++i)
        EXPECT_EQ(after[i], before[i] ^ 0xFFFFFFu);
    EXPECT_EQ(noisy->getDevice().getPenMode(), KGraphicDeviceState::CopyForeground);
}

TEST_F(ImageTest, AlphaImagesDrawThroughTheirMasks)
{
    KAlphaImagePtr sprite(new KAlphaImage(KGraphicSize(4, 1)));
    KImagePtr picture = row({ kRed, kGreen, kWhite, kWhite });
    picture->drawAt(sprite->getDevice(), KGraphicPoint(0, 0));
    KImagePtr mask = row({ kBlack, kBlack, kWhite, kWhite });
    sprite->setMask(*mask);

    // Mode 0: the image where the mask is black, the target elsewhere.
    EXPECT_EQ(drawnOver(*sprite, kBlue), (std::vector<uint32_t> { kRed, kGreen, kBlue, kBlue }));

    // Mode 1 without transparency looks the same; at 0.5 half of each.
    sprite->setBlendMode(KAlphaImage::Constant);
    EXPECT_EQ(drawnOver(*sprite, kBlue), (std::vector<uint32_t> { kRed, kGreen, kBlue, kBlue }));
    sprite->setTransparency(0.5);
    std::vector<uint32_t> halfWay = drawnOver(*sprite, kBlue);
    EXPECT_EQ(halfWay, (std::vector<uint32_t> { 0x80007F, 0x00807F, kBlue, kBlue }));
    // Mode 2 with a mask takes the same path.
    sprite->setBlendMode(KAlphaImage::PerPixel);
    EXPECT_EQ(drawnOver(*sprite, kBlue), halfWay);
    // Fully transparent: nothing at all, and no error.
    ErrorRecorder errors;
    sprite->setTransparency(1.0);
    EXPECT_EQ(drawnOver(*sprite, kBlue), (std::vector<uint32_t> { kBlue, kBlue, kBlue, kBlue }));
    EXPECT_TRUE(errors.empty());

    // Flips take the mask along; a copy keeps mask and settings.
    sprite->setBlendMode(KAlphaImage::Masked);
    sprite->setHotSpot(KGraphicPoint(1, 0));
    sprite->flipHorizontal();
    EXPECT_EQ(drawnOver(*sprite, kBlue), (std::vector<uint32_t> { kBlue, kBlue, kGreen, kRed }));
    KAlphaImagePtr copy(static_cast<KAlphaImage*>(sprite->deepCopy()));
    EXPECT_EQ(drawnOver(*copy, kBlue), (std::vector<uint32_t> { kBlue, kBlue, kGreen, kRed }));
    EXPECT_EQ(copy->getHotSpot(), KGraphicPoint(1, 0));
    EXPECT_NE(copy->getMask(), sprite->getMask());

    // flatten: black where the mask lets through, and no transparency.
    sprite->setTransparency(0.7);
    KImagePtr target = makeImage(4, 1);
    fill(*target, kBlue);
    sprite->flatten(target->getDevice(), sprite->getBounds(), KGraphicRectangle(0, 0, 4, 1));
    EXPECT_EQ(pixels(*target), (std::vector<uint32_t> { kBlack, kBlack, kGreen, kRed }));
    EXPECT_EQ(sprite->getTransparency(), 0.7);

    // Without a mask mode 0 copies; mode 1 blends the whole image.
    sprite->clearMask();
    EXPECT_EQ(drawnOver(*sprite, kBlue), (std::vector<uint32_t> { kWhite, kWhite, kGreen, kRed }));
    sprite->setBlendMode(KAlphaImage::Constant);
    sprite->setTransparency(0.5);
    EXPECT_EQ(drawnOver(*sprite, kBlack)[3], 0x800000u);
}

TEST_F(ImageTest, MaskedDrawingStretchesAndClips)
{
    KAlphaImagePtr sprite(new KAlphaImage(KGraphicSize(2, 2)));
    sprite->getDevice().fillRectangle(KGraphicRectangle(0, 0, 2, 2), KColor(KColor::Red));
    sprite->getDevice().fillRectangle(KGraphicRectangle(1, 0, 1, 2), KColor(KColor::White));
    KImagePtr mask = makeImage(2, 2);
    mask->getDevice().fillRectangle(KGraphicRectangle(1, 0, 1, 2), KColor(KColor::White));
    sprite->setMask(*mask);

    KImagePtr target = makeImage(10, 10);
    fill(*target, kBlue);
    target->getDevice().setClip(KGraphicRectangle(0, 0, 10, 6));
    sprite->drawIn(target->getDevice(), KGraphicRectangle(2, 2, 6, 6));
    EXPECT_EQ(pixel(*target, 3, 3), kRed);
    EXPECT_EQ(pixel(*target, 6, 3), kBlue);
    EXPECT_EQ(pixel(*target, 3, 7), kBlue) << "clipped";
    EXPECT_EQ(countPixels(*target, kRed), 12);

    sprite->setBlendMode(KAlphaImage::Constant);
    fill(*target, kBlue);
    sprite->drawIn(target->getDevice(), KGraphicRectangle(2, 2, 6, 6));
    EXPECT_EQ(pixel(*target, 3, 5), kRed);
    EXPECT_EQ(pixel(*target, 3, 7), kBlue);

    // A 0 by 0 image draws nothing, and tiles nothing.
    KAlphaImagePtr nothing(new KAlphaImage());
    fill(*target, kBlue);
    nothing->drawIn(target->getDevice(), KGraphicRectangle(0, 0, 10, 10));
    target->getDevice().fillWithPattern(KGraphicRectangle(0, 0, 10, 10), *nothing);
    EXPECT_EQ(countPixels(*target, kBlue), 100);
}

TEST_F(ImageTest, DevicesOnAVectorTargetDrawThroughCairo)
{
    // A print job hands the device a context; a recording surface stands in
    // for it and is replayed onto an image to look at the result.
    cairo_rectangle_t extents = { 0, 0, 20, 10 };
    cairo_surface_t* recording = cairo_recording_surface_create(CAIRO_CONTENT_COLOR, &extents);
    cairo_t* context = cairo_create(recording);
    KGraphicDevicePtr page(new KGraphicDevice());
    page->attachNativeDevice(KNativeDevice::wrapContext(context, 20, 10, 72.0, 72.0));
    cairo_destroy(context);
    EXPECT_FALSE(page->hasPixelAccess());
    EXPECT_EQ(page->getBounds(), KGraphicRectangle(0, 0, 20, 10));

    page->fillRectangle(KGraphicRectangle(0, 0, 20, 10), KColor(KColor::White));
    page->setForeground(KColor(KColor::Red));
    page->fillOval(KGraphicRectangle(0, 0, 3, 3));
    KAlphaImagePtr sprite(new KAlphaImage(KGraphicSize(2, 1)));
    sprite->getDevice().fillRectangle(KGraphicRectangle(0, 0, 1, 1), KColor(KColor::Blue));
    sprite->getDevice().fillRectangle(KGraphicRectangle(1, 0, 1, 1), KColor(KColor::White));
    sprite->setMask(*row({ kBlack, kWhite }));
    sprite->drawAt(*page, KGraphicPoint(10, 5));
    page->setPenMode(KGraphicDeviceState::Invert);
    page->fillRectangle(KGraphicRectangle(15, 0, 5, 1));
    page->detachNativeDevice();

    KImagePtr shown = makeImage(20, 10);
    cairo_t* replay = cairo_create(shown->getDevice().getNativeDevice()->getSurface());
    cairo_set_source_surface(replay, recording, 0, 0);
    cairo_paint(replay);
    cairo_destroy(replay);
    cairo_surface_destroy(recording);
    shown->getDevice().getNativeDevice()->endPixels(KWideRectangle(0, 0, 20, 10));

    EXPECT_EQ(pixel(*shown, 1, 1), kRed);
    EXPECT_EQ(pixel(*shown, 0, 0), kWhite) << "the small dab is round there too";
    EXPECT_EQ(pixel(*shown, 10, 5), kBlue);
    EXPECT_EQ(pixel(*shown, 11, 5), kWhite);
    EXPECT_EQ(pixel(*shown, 16, 0), kBlack) << "inverted white";
}
