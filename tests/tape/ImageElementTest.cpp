#include "tests/support/TestSupport.h"
#include "tests/tape/MediaElementTestSupport.h"

#include "kernel/KClassWriter.h"
#include "kernel/KStringBag.h"
#include "tape/StylusImage.h"
#include "tape/TapeMediaImport.h"

#include <fstream>

using namespace tapetest;
using namespace mediatest;

namespace {

constexpr uint32_t kRed = 0xFF0000;
constexpr uint32_t kGreen = 0x00FF00;
constexpr uint32_t kBlue = 0x0000FF;
constexpr uint32_t kYellow = 0xFFFF00;
constexpr uint32_t kWhite = 0xFFFFFF;
constexpr uint32_t kBlack = 0x000000;
constexpr uint32_t kLightGrey = 0xF0F0F0;

class ImageElementTest : public TapeTest {
protected:
    void SetUp() override
    {
        TapeTest::SetUp();
        TapeHost::install(&media);
        // Four quadrants of 10 by 5: red, green above blue, yellow.
        writePicture(quadrants, KGraphicSize(20, 10),
                     { { { 0, 0, 10, 5 }, kRed },
                       { { 10, 0, 10, 5 }, kGreen },
                       { { 0, 5, 10, 5 }, kBlue },
                       { { 10, 5, 10, 5 }, kYellow } });
        // A red square on white, with a light grey band at the bottom.
        writePicture(onWhite, KGraphicSize(20, 20),
                     { { { 0, 0, 20, 20 }, kWhite }, { { 5, 5, 10, 10 }, kRed }, { { 0, 17, 20, 3 }, kLightGrey } });
    }
    void TearDown() override
    {
        TapeTest::TearDown();
        TapeHost::install(nullptr);
    }

    StylusImagePtr makeImage(const std::filesystem::path& file, const KGraphicRectangle& bounds)
    {
        StylusImagePtr image(new StylusImage());
        image->setImageFile(referenceTo(file));
        image->setBounds(bounds);
        return image;
    }
    // The page after drawing the element on a page filled with `under`.
    void drawOnFilledPage(StylusImage& image, uint32_t under)
    {
        page->getPageDevice().fillRectangle(page->getPageBounds(), rgb(under));
        image.drawOnPage();
    }

    MediaHost media;
    ScratchFolder scratch { "taleloom-image-element-test" };
    std::filesystem::path quadrants = scratch / "quadrants.png";
    std::filesystem::path onWhite = scratch / "onwhite.png";
};

} // namespace

TEST_F(ImageElementTest, DrawsInItsBoundsAtNaturalSizeStretchedAndMirrored)
{
    // Placed at its own size in the middle of the page.
    StylusImagePtr image = makeImage(quadrants, { (kPageWidth - 20) / 2, (kPageHeight - 10) / 2, 20, 10 });
    tape->addElement(*image);
    drawOnFilledPage(*image, kBlack);
    const int x = (kPageWidth - 20) / 2;
    const int y = (kPageHeight - 10) / 2;
    EXPECT_EQ(pixel(*page, x, y), kRed);
    EXPECT_EQ(pixel(*page, x + 19, y), kGreen);
    EXPECT_EQ(pixel(*page, x, y + 9), kBlue);
    EXPECT_EQ(pixel(*page, x + 19, y + 9), kYellow);
    EXPECT_EQ(pixel(*page, x - 1, y), kBlack);
    EXPECT_EQ(pixel(*page, x + 20, y + 9), kBlack);
    EXPECT_EQ(countColour(*page, kBlack), int64_t(kPageWidth) * kPageHeight - 200);

    // Each flip swaps the quadrants, on the page and by its own setting.
    struct Case {
        bool flipX, flipY;
        uint32_t topLeft, bottomRight;
    };
    for (const Case& c : { Case { true, false, kGreen, kBlue }, Case { false, true, kBlue, kGreen },
                           Case { true, true, kYellow, kRed } }) {
        SCOPED_TRACE(testing::Message() << c.flipX << c.flipY);
        image->setFlipX(c.flipX);
        image->setFlipY(c.flipY);
        drawOnFilledPage(*image, kBlack);
        EXPECT_EQ(pixel(*page, x, y), c.topLeft);
        EXPECT_EQ(pixel(*page, x + 19, y + 9), c.bottomRight);
    }

    // Stretched to bounds twice its size, each quadrant grows with it.
    image->setFlipX(false);
    image->setFlipY(false);
    image->setBounds({ 10, 10, 40, 20 });
    drawOnFilledPage(*image, kBlack);
    EXPECT_EQ(pixel(*page, 15, 14), kRed);
    EXPECT_EQ(pixel(*page, 44, 14), kGreen);
    EXPECT_EQ(pixel(*page, 15, 25), kBlue);
    EXPECT_EQ(pixel(*page, 44, 25), kYellow);
    EXPECT_EQ(pixel(*page, 50, 25), kBlack);

    // Drawn for another device, the bounds move with the target's origin.
    KImagePtr other(new KImage(KGraphicSize(100, 100)));
    image->drawOn(other->getDevice(), KGraphicRectangle(0, 0, 640, 480), KGraphicRectangle(20, 30, 640, 480));
    EXPECT_GE(other->getDevice().getPixel(31, 41).red, 0xFF00);
    EXPECT_EQ(other->getDevice().getPixel(29, 41).red, 0);
}

TEST_F(ImageElementTest, TransparentWhiteShowsThePageThroughWithAHardOrBlurredEdge)
{
    StylusImagePtr image = makeImage(onWhite, { 40, 40, 20, 20 });
    tape->addElement(*image);

    drawOnFilledPage(*image, kBlue);
    EXPECT_EQ(pixel(*page, 41, 41), kWhite);
    EXPECT_EQ(pixel(*page, 50, 50), kRed);

    image->setTransparentWhite(true);
    drawOnFilledPage(*image, kBlue);
    EXPECT_EQ(pixel(*page, 41, 41), kBlue);
    EXPECT_EQ(pixel(*page, 50, 50), kRed);
    EXPECT_EQ(pixel(*page, 45, 45), kRed);
    EXPECT_EQ(pixel(*page, 44, 50), kBlue);
    // Light grey is not white at the default threshold.
    EXPECT_EQ(pixel(*page, 50, 58), kLightGrey);
    std::vector<uint32_t> hard = pixels(*page);

    // A lower threshold counts the grey as white too: the page shows
    // through (as the grey lets it, by the raster operations).
    image->setThreshold(0xE000);
    drawOnFilledPage(*image, kBlue);
    EXPECT_EQ(pixel(*page, 50, 58), kBlue & kLightGrey);
    EXPECT_EQ(pixel(*page, 50, 50), kRed);
    image->setThreshold(StylusImage::kDefaultThreshold);

    // The blurred mask softens the edge of the square and nothing else.
    image->setBlurFilter(true);
    drawOnFilledPage(*image, kBlue);
    std::vector<uint32_t> blurred = pixels(*page);
    EXPECT_NE(hard, blurred);
    EXPECT_EQ(pixel(*page, 41, 41), kBlue);
    EXPECT_EQ(pixel(*page, 50, 50), kRed);
    EXPECT_NE(pixel(*page, 44, 50), kBlue);
    EXPECT_NE(pixel(*page, 44, 50), kRed);
    for (int y = 0; y < kPageHeight; ++y) {
        for (int x = 0; x < kPageWidth; ++x) {
            if (x >= 40 && x < 60 && y >= 40 && y < 60)
                continue;
            ASSERT_EQ(blurred[size_t(y * kPageWidth + x)], kBlue) << x << "," << y;
        }
    }

    // The silhouette is the picture's shape in black; without the mask it
    // is the whole rectangle.
    image->setBlurFilter(false);
    page->getPageDevice().fillRectangle(page->getPageBounds(), rgb(kWhite));
    image->drawSilhouette(page->getPageDevice(), KGraphicRectangle(0, 0, 1, 1), KGraphicRectangle(10, 0, 1, 1));
    EXPECT_EQ(pixel(*page, 60, 50), kBlack);
    EXPECT_EQ(pixel(*page, 51, 41), kWhite);
    image->setTransparentWhite(false);
    image->drawSilhouette(page->getPageDevice(), KGraphicRectangle(0, 0, 1, 1), KGraphicRectangle(10, 0, 1, 1));
    EXPECT_EQ(pixel(*page, 51, 41), kBlack);
    EXPECT_EQ(countColour(*page, kBlack), 400);
}

TEST_F(ImageElementTest, AMissingOrBrokenFileIsABlackRectangleAndTheTapeGoesOn)
{
    std::filesystem::path broken = scratch / "broken.png";
    std::ofstream(broken) << std::string(500, 'x');

    tape->addElement(*makeStroke({ { 80, 60 } }, 400, rgb(kWhite)));
    tape->addElement(*makeImage(scratch / "gone.png", { 10, 10, 30, 20 }));
    tape->addElement(*makeImage(broken, { 100, 60, 30, 20 }));
    tape->addElement(*makeImage(quadrants, { 60, 90, 20, 10 }));
    ErrorRecorder errors;
    tape->startPlaying(0);
    int32_t ticks = playToEnd(1000);
    EXPECT_LT(ticks, 20);
    EXPECT_EQ(tape->getPlayState(), Tape::Stopped);
    EXPECT_EQ(pixel(*page, 10, 10), kBlack);
    EXPECT_EQ(pixel(*page, 39, 29), kBlack);
    EXPECT_EQ(pixel(*page, 40, 30), kWhite);
    EXPECT_EQ(pixel(*page, 129, 79), kBlack);
    EXPECT_EQ(pixel(*page, 60, 90), kRed);
    EXPECT_EQ(page->getRefreshed().contains(KGraphicPoint(129, 79)), true);

    // Rebuilt, the page looks the same.
    tape->setPositionQuietly(tape->getCount());
    std::vector<uint32_t> played = pixels(*page);
    tape->getPageCache().setEnabled(false);
    tape->rebuildPage();
    EXPECT_EQ(pixels(*page), played);
}

TEST_F(ImageElementTest, MirroringReflectsTheRectangleAndTwiceIsTheFirstState)
{
    StylusImagePtr image = makeImage(quadrants, { 10, 20, 20, 10 });
    tape->addElement(*image);
    drawOnFilledPage(*image, kBlack);
    std::vector<uint32_t> before = pixels(*page);

    image->mirror(true, kPageWidth / 2);
    EXPECT_TRUE(image->getFlipX());
    EXPECT_EQ(image->getBounds(), KGraphicRectangle(kPageWidth - 30, 20, 20, 10));
    drawOnFilledPage(*image, kBlack);
    std::vector<uint32_t> after = pixels(*page);
    for (int y = 0; y < kPageHeight; ++y) {
        for (int x = 0; x < kPageWidth; ++x)
            ASSERT_EQ(after[size_t(y * kPageWidth + x)], before[size_t(y * kPageWidth + kPageWidth - 1 - x)]);
    }

    image->mirror(true, kPageWidth / 2);
    image->mirror(false, 7);
    EXPECT_TRUE(image->getFlipY());
    EXPECT_EQ(image->getBounds(), KGraphicRectangle(10, -16, 20, 10));
    image->mirror(false, 7);
    EXPECT_FALSE(image->getFlipX());
    EXPECT_FALSE(image->getFlipY());
    EXPECT_EQ(image->getBounds(), KGraphicRectangle(10, 20, 20, 10));
    drawOnFilledPage(*image, kBlack);
    EXPECT_EQ(pixels(*page), before);
}

TEST_F(ImageElementTest, PersistenceKeepsEveryFieldAndOldStreamsTakeTheDefaults)
{
    StylusImagePtr image = makeImage(quadrants, { 1, 2, 3, 4 });
    image->setTransparentWhite(true);
    image->setBlurFilter(true);
    image->setThreshold(1234);
    image->setFlipX(true);
    image->setFlipY(true);
    image->setBookmark("here");
    std::vector<uint8_t> bytes = streamOf(*image);

    StylusImagePtr copy(new StylusImage());
    EXPECT_EQ(readStream(*copy, bytes), 0);
    EXPECT_EQ(copy->getType(), ImageType);
    EXPECT_EQ(copy->getBounds(), KGraphicRectangle(1, 2, 3, 4));
    EXPECT_EQ(copy->getImageFile().getPath(), image->getImageFile().getPath());
    EXPECT_TRUE(copy->getTransparentWhite());
    EXPECT_TRUE(copy->getBlurFilter());
    EXPECT_EQ(copy->getThreshold(), 1234);
    EXPECT_TRUE(copy->getFlipX());
    EXPECT_TRUE(copy->getFlipY());
    EXPECT_EQ(copy->getBookmark(), KString("here"));
    EXPECT_EQ(streamOf(*copy), bytes);

    // A stream of the two first sections only, with an unknown one.
    KFile file;
    file.setMode(KFileModeMemory);
    KClassWriter writer;
    writer.begin(file, StylusImage::classRecord);
    writer.newSection(1);
    image->TapeGraphicObject::writeToFile(file, 1);
    KFileReference reference = image->getImageFile();
    reference.writeToFile(file, 1);
    file.writeBool(true);
    writer.newSection(2);
    file.writeBool(false);
    file.writeBool(true);
    writer.newSection(9);
    file.writeLong(77);
    writer.end();
    auto* data = static_cast<const uint8_t*>(file.getMemoryData());
    std::vector<uint8_t> old(data, data + file.getMemorySize());

    EXPECT_EQ(readStream(*copy, old), 0);
    EXPECT_TRUE(copy->getTransparentWhite());
    EXPECT_FALSE(copy->getFlipX());
    EXPECT_TRUE(copy->getFlipY());
    EXPECT_FALSE(copy->getBlurFilter());
    EXPECT_EQ(copy->getThreshold(), 65535);

    // A copy takes every field.
    StylusImagePtr twin(static_cast<StylusImage*>(image->deepCopy()));
    EXPECT_EQ(streamOf(*twin), bytes);
    EXPECT_FALSE(twin->hasTape());
}

TEST_F(ImageElementTest, ANameReachingOutOfTheFolderIsRefusedAndTheRestLoads)
{
    KPath outside;
    outside.setNameAndExtension("../../etc/passwd");
    ASSERT_EQ(KFileReference(outside).getObjectName(), KString("../../etc/passwd"));
    StylusImagePtr bad = makeImage(quadrants, { 10, 10, 20, 10 });
    bad->setImageFile(KFileReference(outside));
    tape->addElement(*makeStroke({ { 5, 5 } }, 3, rgb(kRed)));
    tape->addElement(*bad);
    tape->addElement(*makeImage(quadrants, { 60, 60, 20, 10 }));
    std::vector<uint8_t> bytes = streamOf(*tape);

    TapePtr loaded = makeTape(&page);
    EXPECT_EQ(readStream(*loaded, bytes), 0);
    ASSERT_EQ(loaded->getCount(), 3);
    ASSERT_EQ(media.refused.size(), 1u);
    EXPECT_EQ(media.refused[0], "../../etc/passwd");
    auto* refused = dynamic_cast<StylusImage*>(loaded->getAt(1));
    ASSERT_NE(refused, nullptr);
    EXPECT_TRUE(refused->getImageFile().getPath().isEmpty());
    auto* kept = dynamic_cast<StylusImage*>(loaded->getAt(2));
    ASSERT_NE(kept, nullptr);
    EXPECT_EQ(kept->getImageFile().getPath(), pathOf(quadrants));

    loaded->setPositionQuietly(loaded->getCount());
    loaded->rebuildPage();
    EXPECT_EQ(pixel(*page, 10, 10), kBlack);
    EXPECT_EQ(pixel(*page, 60, 60), kRed);
}

TEST_F(ImageElementTest, AMovedProjectFindsItsMediaByNameInItsMediaFolder)
{
    std::filesystem::path before = scratch / "Story";
    std::filesystem::path after = scratch / "Moved" / "Story";
    std::filesystem::path picture = before / "Media" / "quadrants.png";
    writePicture(picture, KGraphicSize(20, 10), { { { 0, 0, 20, 10 }, kGreen } });
    tape->setMediaDirectory(folderAt(before / "Media"));
    tape->addElement(*makeImage(picture, { 30, 30, 20, 10 }));
    std::vector<uint8_t> bytes = streamOf(*tape);

    std::filesystem::create_directories(after.parent_path());
    std::filesystem::rename(before, after);

    // Without a media folder the stored path leads nowhere.
    TapePtr loaded = makeTape(&page);
    ASSERT_EQ(readStream(*loaded, bytes), 0);
    loaded->goToEnd();
    EXPECT_EQ(pixel(*page, 31, 31), kBlack);

    // With the project's new media folder the file is found by its name,
    // and nothing is missing.
    KDirectory newMedia = folderAt(after / "Media");
    loaded->setMediaDirectory(newMedia);
    loaded->getPageCache().clear();
    loaded->rebuildPage();
    EXPECT_EQ(pixel(*page, 31, 31), kGreen);
    EXPECT_FALSE(loaded->findMissingMedia(newMedia, nullptr));
    EXPECT_EQ(media.missingQuestions, 0);

    // A tape without the folder finds the file when searched, in the
    // second folder if not the first, and keeps the new place.
    TapePtr plain = makeTape(&page);
    ASSERT_EQ(readStream(*plain, bytes), 0);
    KDirectory elsewhere = folderAt(scratch / "Moved");
    EXPECT_FALSE(plain->findMissingMedia(elsewhere, &newMedia));
    EXPECT_EQ(media.missingQuestions, 0);
    auto* image = dynamic_cast<StylusImage*>(plain->getAt(0));
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->getImageFile().getPath(), pathOf(after / "Media" / "quadrants.png"));
    plain->goToEnd();
    EXPECT_EQ(pixel(*page, 31, 31), kGreen);

    // Found nowhere, the user is asked; giving up is the answer.
    image->setImageFile(referenceTo(scratch / "nowhere" / "lost.png"));
    EXPECT_TRUE(plain->findMissingMedia(elsewhere, &newMedia));
    EXPECT_EQ(media.missingQuestions, 1);
    // A place the user shows is taken, copied into the media folder of a
    // tape that has one.
    std::filesystem::path shown = scratch / "Shown" / "lost.png";
    writePicture(shown, KGraphicSize(4, 4), { { { 0, 0, 4, 4 }, kBlue } });
    media.answer = pathOf(shown);
    loaded->addElement(*makeImage(scratch / "nowhere" / "lost.png", { 0, 0, 4, 4 }));
    EXPECT_FALSE(loaded->findMissingMedia(elsewhere, nullptr));
    EXPECT_EQ(media.missingQuestions, 2);
    EXPECT_TRUE(std::filesystem::exists(after / "Media" / "lost.png"));
    EXPECT_TRUE(loaded->usesMediaNamed("lost.png"));
}

TEST_F(ImageElementTest, ImportMakesShortUniqueNamesAndReusesTheSameFile)
{
    std::filesystem::path mediaPath = scratch / "Project" / "Media";
    KDirectory mediaFolder = folderAt(mediaPath);
    std::filesystem::path longName = scratch / "A very long picture name for a story page.png";
    std::filesystem::copy_file(quadrants, longName);

    KFileReference first;
    ASSERT_FALSE(importMediaFile(referenceTo(longName), mediaFolder, first));
    std::filesystem::create_directories(mediaPath.parent_path());
    ASSERT_TRUE(importMediaFile(referenceTo(longName), mediaFolder, first));
    KString firstName = first.getObjectName();
    EXPECT_LE(firstName.getLength(), kMaxMediaNameLength);
    EXPECT_EQ(firstName.right(4), KString(".png"));
    EXPECT_TRUE(first.doesExist());

    // The same bytes again: the file already there is taken.
    KFileReference again;
    ASSERT_TRUE(importMediaFile(referenceTo(longName), mediaFolder, again));
    EXPECT_EQ(again.getPath(), first.getPath());

    // Other bytes under the same name get a numbered name, then another.
    std::filesystem::path otherFolder = scratch / "other";
    std::filesystem::create_directories(otherFolder);
    std::vector<KString> names { firstName };
    for (uint32_t colour : { kBlue, kYellow }) {
        std::filesystem::path other = otherFolder / longName.filename();
        std::filesystem::remove(other);
        writePicture(other, KGraphicSize(3, 3), { { { 0, 0, 3, 3 }, colour } });
        KFileReference imported;
        ASSERT_TRUE(importMediaFile(referenceTo(other), mediaFolder, imported));
        KString name = imported.getObjectName();
        EXPECT_LE(name.getLength(), kMaxMediaNameLength);
        EXPECT_EQ(name.right(4), KString(".png"));
        for (const KString& earlier : names)
            EXPECT_NE(name, earlier);
        names.push_back(name);
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(mediaPath), {}), 3);

    // A short name stays as it is; a missing source copies nothing.
    KFileReference plain;
    ASSERT_TRUE(importMediaFile(referenceTo(onWhite), mediaFolder, plain));
    EXPECT_EQ(plain.getObjectName(), KString("onwhite.png"));
    KFileReference none;
    EXPECT_FALSE(importMediaFile(referenceTo(scratch / "missing.png"), mediaFolder, none));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(mediaPath), {}), 4);
}

TEST_F(ImageElementTest, MediaQueriesGoByTheFileName)
{
    StylusImagePtr image = makeImage(quadrants, { 0, 0, 20, 10 });
    tape->addElement(*image);
    KStringBagPtr names = tape->getMediaNames();
    ASSERT_EQ(names->getSize(), 1);
    EXPECT_TRUE(names->has(KString("quadrants.png")));
    tape->addElement(*makeImage(quadrants, { 0, 0, 20, 10 }));
    EXPECT_EQ(tape->getMediaNames()->getSize(), 1);
    EXPECT_TRUE(tape->usesMediaNamed("quadrants.png"));
    EXPECT_FALSE(tape->usesMediaNamed("onwhite.png"));

    EXPECT_FALSE(image->replaceMedia(referenceTo(onWhite), referenceTo(quadrants)));
    EXPECT_TRUE(tape->replaceMedia(referenceTo(quadrants), referenceTo(onWhite)));
    EXPECT_TRUE(image->usesMediaNamed("onwhite.png"));
    EXPECT_FALSE(tape->usesMediaNamed("quadrants.png"));
}
