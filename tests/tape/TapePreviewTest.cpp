#include "tests/support/TestSupport.h"
#include "tests/tape/TapeTestSupport.h"

#include "graphics/KPixelBuffer.h"
#include "tape/TapePreview.h"

#include <cstdio>
#include <fstream>
#include <random>

using namespace tapetest;

namespace {

std::vector<uint32_t> imagePixels(KImage& image)
{
    std::vector<uint32_t> result;
    KPixelBuffer buffer;
    if (!image.getDevice().beginPixelAccess(buffer))
        return result;
    for (int32_t y = 0; y < buffer.height; ++y) {
        for (int32_t x = 0; x < buffer.width; ++x)
            result.push_back(*buffer.at(x, y) & KPixelBuffer::kColourBits);
    }
    image.getDevice().endPixelAccess(KWideRectangle(0, 0, 0, 0));
    return result;
}

int channelDistance(uint32_t a, uint32_t b)
{
    int worst = 0;
    for (int shift = 0; shift < 24; shift += 8)
        worst = std::max(worst, std::abs(int((a >> shift) & 0xFF) - int((b >> shift) & 0xFF)));
    return worst;
}

class TapePreviewTest : public TapeTest {
protected:
    void SetUp() override
    {
        TapeTest::SetUp();
        tape->setPageSize(KGraphicSize(kPageWidth, kPageHeight));
        preview = new TapePreview();
    }
    void addStrokes(int32_t count)
    {
        std::uniform_int_distribution<int32_t> coordinate(-10, 170);
        std::uniform_int_distribution<int32_t> size(2, 24);
        for (int32_t i = 0; i < count; ++i) {
            std::vector<std::pair<int16_t, int16_t>> path;
            for (int32_t p = 0; p < 3; ++p)
                path.emplace_back(int16_t(coordinate(random)), int16_t(coordinate(random)));
            tape->addElement(*makeStroke(path, int16_t(size(random)), rgb(random() & 0xFFFFFF)));
        }
    }
    void finish()
    {
        preview->setTape(tape.get());
        while (preview->step()) { }
    }
    // What `render` shows at the position, shrunk the same way.
    std::vector<uint32_t> referenceThumbnail(int32_t position)
    {
        std::vector<uint32_t> page = referencePage(*tape, position);
        KImage full(KGraphicSize(kPageWidth, kPageHeight));
        KPixelBuffer buffer;
        EXPECT_TRUE(full.getDevice().beginPixelAccess(buffer));
        for (int32_t y = 0; y < kPageHeight; ++y) {
            for (int32_t x = 0; x < kPageWidth; ++x)
                *buffer.at(x, y) = page[size_t(y * kPageWidth + x)] | 0xFF000000u;
        }
        full.getDevice().endPixelAccess(KWideRectangle(0, 0, kPageWidth, kPageHeight));
        KImage small(KGraphicSize(TapePreview::kThumbnailWidth, TapePreview::kThumbnailHeight));
        full.drawIn(small.getDevice(), TapePreview::letterbox(full.getSize()));
        return imagePixels(small);
    }
    void expectThumbnailsAsRendered()
    {
        for (int32_t p = 1; p <= tape->getCount(); ++p) {
            KImage* thumbnail = preview->getThumbnail(p);
            ASSERT_NE(thumbnail, nullptr) << "position " << p;
            std::vector<uint32_t> expected = referenceThumbnail(p);
            std::vector<uint32_t> got = imagePixels(*thumbnail);
            ASSERT_EQ(got.size(), expected.size());
            int worst = 0;
            for (size_t i = 0; i < got.size(); ++i)
                worst = std::max(worst, channelDistance(got[i], expected[i]));
            EXPECT_LE(worst, 1) << "position " << p;
        }
    }

    TapePreviewPtr preview;
    std::mt19937 random { 11 };
};

} // namespace

TEST_F(TapePreviewTest, ThumbnailsShowThePageAsRenderedAndAnInsertRedrawsFromTheLastTransition)
{
    addStrokes(6);
    tape->addElement(*makeWipe(rgb(0x203040)));
    addStrokes(6);
    tape->addElement(*makeWipe(rgb(0x405060)));
    addStrokes(3);
    finish();
    expectThumbnailsAsRendered();
    EXPECT_TRUE(preview->isFinished());
    EXPECT_EQ(preview->getThumbnail(0), nullptr);

    // A stroke inserted after the first transition: the first page keeps its
    // thumbnails, and the work starts at that transition, not at the start.
    tape->goToPosition(9);
    preview->resetElementsDrawn();
    addStrokes(1);
    EXPECT_NE(preview->getThumbnail(8), nullptr);
    EXPECT_EQ(preview->getThumbnail(10), nullptr);
    // The program's tape host asks for this after every change.
    preview->requestUpdate();
    while (preview->step()) { }
    expectThumbnailsAsRendered();
    // Elements 6 (the transition) to the end, each drawn once.
    EXPECT_EQ(preview->getElementsDrawn(), tape->getCount() - 6);
}

TEST_F(TapePreviewTest, EmptyTapeFinishesAtOnceAndASwitchedOffElementIsNotDrawn)
{
    int32_t reported = -1;
    preview->setProgressListener([&](int32_t remaining, int32_t) { reported = remaining; });
    finish();
    EXPECT_TRUE(preview->isFinished());
    EXPECT_EQ(reported, 0);

    addStrokes(2);
    tape->getAt(1)->deactivate();
    preview->setTape(tape.get());
    preview->step();
    EXPECT_EQ(reported, 2);
    while (preview->step()) { }
    EXPECT_EQ(preview->getElementsDrawn(), 1);
    EXPECT_NE(preview->getThumbnail(2), nullptr);
    EXPECT_EQ(imagePixels(*preview->getThumbnail(1)), imagePixels(*preview->getThumbnail(2)));
}

TEST_F(TapePreviewTest, PagesThatAreNot4By3AreLetterboxed)
{
    EXPECT_EQ(TapePreview::letterbox(KGraphicSize(640, 480)), KGraphicRectangle(0, 0, 64, 48));
    EXPECT_EQ(TapePreview::letterbox(KGraphicSize(1280, 960)), KGraphicRectangle(0, 0, 64, 48));
    EXPECT_EQ(TapePreview::letterbox(KGraphicSize(1600, 900)), KGraphicRectangle(0, 6, 64, 36));
    EXPECT_EQ(TapePreview::letterbox(KGraphicSize(480, 640)), KGraphicRectangle(14, 0, 36, 48));
    EXPECT_EQ(TapePreview::letterbox(KGraphicSize(0, 0)), KGraphicRectangle(0, 0, 64, 48));
}

TEST_F(TapePreviewTest, TheThumbnailsFileHoldsOnlyForTheSameTape)
{
    addStrokes(5);
    finish();
    std::string path = testing::TempDir() + "/.story.previews";
    ASSERT_TRUE(preview->saveThumbnails(KString(path.c_str())));
    std::vector<uint32_t> third = imagePixels(*preview->getThumbnail(3));

    // The same tape read again: every thumbnail at once, nothing drawn.
    for (int32_t i = 0; i < tape->getCount(); ++i)
        tape->getAt(i)->invalidatePreview();
    TapePreviewPtr reopened(new TapePreview());
    reopened->setTape(tape.get());
    ASSERT_TRUE(reopened->loadThumbnails(KString(path.c_str())));
    EXPECT_EQ(imagePixels(*reopened->getThumbnail(3)), third);
    while (reopened->step()) { }
    EXPECT_EQ(reopened->getElementsDrawn(), 0);

    // A changed tape, a cut file and a foreign file are passed over.
    tape->getAt(4)->deactivate();
    TapePreviewPtr stale(new TapePreview());
    stale->setTape(tape.get());
    EXPECT_FALSE(stale->loadThumbnails(KString(path.c_str())));
    tape->getAt(4)->activate();
    std::ifstream in(path, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    for (size_t cut : { size_t(3), size_t(30), bytes.size() / 2, bytes.size() - 1 }) {
        std::ofstream(path, std::ios::binary | std::ios::trunc).write(bytes.data(), std::streamsize(cut));
        EXPECT_FALSE(stale->loadThumbnails(KString(path.c_str()))) << cut;
    }
    std::string foreign = bytes;
    foreign[40] = char(foreign[40] ^ 0x5A);
    std::ofstream(path, std::ios::binary | std::ios::trunc).write(foreign.data(), std::streamsize(foreign.size()));
    stale->loadThumbnails(KString(path.c_str()));
    std::remove(path.c_str());
}
