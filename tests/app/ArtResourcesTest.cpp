#include "app/ArtResources.h"

#include "graphics/KPixelBuffer.h"
#include "tape/TapeHost.h"
#include "tape/TapeObject.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// Colour bits at a pixel of an image.
uint32_t colourAt(KImage& image, int32_t x, int32_t y)
{
    KPixelBuffer pixels;
    if (!image.getDevice().beginPixelAccess(pixels))
        return 0xDEADBEEF;
    return *pixels.at(x, y) & KPixelBuffer::kColourBits;
}

// Every picture drawn through a mask must be pure white where the mask lets
// the target through, and the mask only black or white: the raster
// operations of masked drawing leave anything else as stains on the page.
void expectMaskFits(int16_t pictureId, int16_t maskId)
{
    SCOPED_TRACE(std::to_string(pictureId) + " with mask " + std::to_string(maskId));
    KImagePtr picture(new KImage());
    KImagePtr mask(new KImage());
    ASSERT_TRUE(ArtResources::loadImage(pictureId, *picture));
    ASSERT_TRUE(ArtResources::loadImage(maskId, *mask));
    ASSERT_EQ(picture->getSize(), mask->getSize());
    int32_t shown = 0;
    for (int32_t y = 0; y < mask->getSize().height; ++y) {
        for (int32_t x = 0; x < mask->getSize().width; ++x) {
            uint32_t m = colourAt(*mask, x, y);
            ASSERT_TRUE(m == 0 || m == 0xFFFFFF) << x << "," << y;
            if (m == 0xFFFFFF) {
                ASSERT_EQ(colourAt(*picture, x, y), 0xFFFFFFu) << x << "," << y;
            }
            shown += m == 0;
        }
    }
    // Something shows, and not only a full square.
    EXPECT_GT(shown, 0);
}

class ArtHost : public TapeHost {
public:
    bool loadBitmapResource(int16_t id, KImage& image) override { return ArtResources::loadImage(id, image); }
};

} // namespace

TEST(ArtResources, EveryIdHasItsPicture)
{
    std::vector<int16_t> ids = ArtResources::allIds();
    EXPECT_GT(ids.size(), 100u);
    for (int16_t id : ids) {
        SCOPED_TRACE(id);
        KImagePtr image(new KImage());
        ASSERT_TRUE(ArtResources::loadImage(id, *image)) << ArtResources::fileNameOf(id);
        EXPECT_GT(image->getSize().width, 0);
    }
    KImagePtr image(new KImage(KGraphicSize(4, 4)));
    EXPECT_EQ(ArtResources::fileNameOf(12345), nullptr);
    EXPECT_FALSE(ArtResources::loadImage(12345, *image));
    EXPECT_FALSE(image->hasImage());
}

TEST(ArtResources, PicturesFitTheirMasks)
{
    using namespace ArtResources;
    for (int32_t control = kFirstToolControl; control <= kLastToolControl; ++control) {
        for (bool pushed : { false, true }) {
            int16_t picture = toolButtonPicture(control, pushed);
            expectMaskFits(picture, int16_t(picture + 1));
        }
    }
    EXPECT_EQ(toolButtonPicture(kFirstToolControl - 1, false), -1);
    EXPECT_EQ(toolButtonPicture(kLastToolControl + 1, true), -1);
    for (int16_t type = 1; type <= 12; ++type)
        expectMaskFits(int16_t(kTypeIconBase + type), kTypeIconMask);
    for (int16_t i = 0; i < kIndicatorCount; ++i)
        expectMaskFits(int16_t(kIndicatorBase + i), kIndicatorMask);
    expectMaskFits(kPauseMarker, kMarkerMask);
    expectMaskFits(kWaitMarker, kMarkerMask);
    expectMaskFits(kStartupPicture, kStartupMask);
    expectMaskFits(kColourButton, kColourButtonMask);
    expectMaskFits(kHandCursor, kHandCursorMask);
    for (int16_t id : { kNavigationBack, kNavigationForward, kNavigationBeginning, kNavigationEnd })
        expectMaskFits(id, int16_t(id + 1));
}

TEST(ArtResources, MaskedPictureDrawsOnlyItsShape)
{
    KAlphaImagePtr marker = ArtResources::loadMaskedPicture(ArtResources::kPauseMarker, ArtResources::kMarkerMask);
    ASSERT_TRUE(marker);
    KImagePtr page(new KImage(KGraphicSize(80, 80)));
    page->getDevice().fillRectangle(page->getBounds(), KColor(KColor::Green));
    marker->drawAt(page->getDevice(), KGraphicPoint(8, 8));
    // The round marker's corners leave the page; its middle covers it.
    EXPECT_EQ(colourAt(*page, 9, 9), 0x00FF00u);
    EXPECT_NE(colourAt(*page, 40, 40), 0x00FF00u);
    EXPECT_FALSE(ArtResources::loadMaskedPicture(ArtResources::kPauseMarker, 12345));

    KAlphaImagePtr hand = ArtResources::loadMaskedPicture(ArtResources::kHandCursor, ArtResources::kHandCursorMask);
    ASSERT_TRUE(hand);
    EXPECT_EQ(hand->getHotSpot(), ArtResources::cursorHotSpot(ArtResources::kHandCursor));
}

// An element without a place on the page shows its kind's picture at the
// page's upper right when the host gives the pictures.
TEST(ArtResources, TapeHostGivesTheElementPictures)
{
    ArtHost host;
    TapeHost::install(&host);
    TapeObjectPtr wait(new TapeObject());
    wait->setType(1);
    KImagePtr page(new KImage(KGraphicSize(200, 100)));
    page->getDevice().fillRectangle(page->getBounds(), KColor(KColor::Black));
    wait->drawHighlighted(page->getDevice(), page->getBounds(), page->getBounds());
    TapeHost::install(nullptr);
    // The 32-pixel round badge stands 16 from the top and the right: its
    // white ground inside the rim, the picture in its middle, the page
    // untouched at its corner and elsewhere.
    const int32_t left = 200 - 16 - 32;
    EXPECT_EQ(colourAt(*page, left + 5, 16 + 16), 0xFFFFFFu);
    EXPECT_NE(colourAt(*page, left + 16, 16 + 16), 0u);
    EXPECT_EQ(colourAt(*page, left, 16), 0u);
    EXPECT_EQ(colourAt(*page, 100, 50), 0u);
}
