#include "tests/support/TestSupport.h"
#include "tests/tape/TapeTestSupport.h"

#include "graphics/KGraphicDevice.h"
#include "kernel/KDirectory.h"
#include "kernel/KStringBag.h"

#include <filesystem>
#include <set>

using namespace tapetest;

namespace {

constexpr uint32_t kRed = 0xFF0000;
constexpr uint32_t kGreen = 0x00FF00;
constexpr uint32_t kBlue = 0x0000FF;
constexpr uint32_t kBlack = 0x000000;

class WipeOutTest : public TapeTest {
protected:
    // A red page and a transition to blue with the effect, started.
    WipeOutPtr startEffect(int32_t effect)
    {
        tape = makeTape(&page);
        tape->addElement(*makeStroke({ { 80, 60 } }, 400, rgb(kRed)));
        WipeOutPtr wipe = makeWipe(rgb(kBlue), effect);
        tape->addElement(*wipe);
        tape->startPlaying(1);
        tick();
        return wipe;
    }
    // Steps until the transition lets go of the tape.
    int32_t stepsToEnd(WipeOut& wipe)
    {
        int32_t steps = 0;
        while (tape->getPlayingObject() == &wipe && steps < 10000) {
            wipe.playStep();
            ++steps;
        }
        return steps;
    }
    std::filesystem::path scratch = std::filesystem::temp_directory_path() / "taleloom-wipeout-test";
};

} // namespace

TEST_F(WipeOutTest, EachEffectHasItsStepCountAndEndsWhenTheStepPassesIt)
{
    struct Expected {
        int32_t effect;
        int32_t stepCount;
    };
    const Expected expected[] = {
        { WipeOut::ZoomIn, 120 },
        { WipeOut::ZoomOut, 120 },
        { WipeOut::WipeLeft, 120 },
        { WipeOut::WipeRight, 120 },
        { WipeOut::WipeUp, 120 },
        { WipeOut::WipeDown, 120 },
        { WipeOut::CheckerBoard, 99 },
        { WipeOut::VenetianBlinds, kPageHeight / 4 },
        { 42, 100 },
    };
    for (const Expected& e : expected) {
        SCOPED_TRACE(e.effect);
        WipeOutPtr wipe = startEffect(e.effect);
        EXPECT_EQ(wipe->getStepCount(), e.stepCount);
        EXPECT_EQ(tape->getPlayingObject(), wipe.get());
        EXPECT_EQ(stepsToEnd(*wipe), e.stepCount + 1);
        EXPECT_EQ(wipe->getStep(), e.stepCount + 1);
        EXPECT_EQ(countColour(*page, kBlue), int64_t(kPageWidth) * kPageHeight);
    }

    // A cut is over in the tick it starts.
    WipeOutPtr cut = startEffect(WipeOut::Cut);
    EXPECT_EQ(tape->getPlayingObject(), nullptr);
    EXPECT_EQ(tape->getPlayIndex(), 2);
    EXPECT_EQ(countColour(*page, kBlue), int64_t(kPageWidth) * kPageHeight);

    // A page lower than 4 pixels has no blinds and ends after one step.
    tape = makeTape();
    page = new ImageTapePage(KGraphicSize(50, 3));
    tape->setSpriteSystem(*page);
    WipeOutPtr blinds = makeWipe(rgb(kGreen), WipeOut::VenetianBlinds);
    tape->addElement(*blinds);
    tape->startPlaying(0);
    tick();
    EXPECT_EQ(blinds->getStepCount(), 0);
    EXPECT_EQ(stepsToEnd(*blinds), 1);
    EXPECT_EQ(countColour(*page, kGreen), 150);
}

TEST_F(WipeOutTest, WipesBeginAtTheEdgeTheyAreNamedFor)
{
    WipeOutPtr left = startEffect(WipeOut::WipeLeft);
    left->playStep();
    EXPECT_EQ(pixel(*page, 0, 60), kBlue);
    EXPECT_EQ(pixel(*page, 1, 60), kBlue);
    EXPECT_EQ(pixel(*page, 2, 60), kRed);
    EXPECT_EQ(pixel(*page, kPageWidth - 1, 60), kRed);

    // The right wipe's first strip lies beyond the page; the next one is at
    // the right edge.
    WipeOutPtr right = startEffect(WipeOut::WipeRight);
    right->playStep();
    EXPECT_EQ(countColour(*page, kBlue), 0);
    right->playStep();
    EXPECT_EQ(pixel(*page, kPageWidth - 1, 60), kBlue);
    EXPECT_EQ(pixel(*page, 0, 60), kRed);

    WipeOutPtr up = startEffect(WipeOut::WipeUp);
    up->playStep();
    EXPECT_EQ(pixel(*page, 80, 0), kBlue);
    EXPECT_EQ(pixel(*page, 80, kPageHeight - 1), kRed);

    WipeOutPtr down = startEffect(WipeOut::WipeDown);
    down->playStep();
    down->playStep();
    EXPECT_EQ(pixel(*page, 80, kPageHeight - 1), kBlue);
    EXPECT_EQ(pixel(*page, 80, 0), kRed);

    // Zoom out grows from the middle.
    WipeOutPtr zoom = startEffect(WipeOut::ZoomOut);
    for (int32_t i = 0; i < 10; ++i)
        zoom->playStep();
    EXPECT_EQ(pixel(*page, 80, 60), kBlue);
    EXPECT_EQ(pixel(*page, 0, 0), kRed);
}

TEST_F(WipeOutTest, CheckerBoardShufflesAfreshOnEveryRun)
{
    WipeOutPtr wipe = startEffect(WipeOut::CheckerBoard);
    std::vector<int32_t> first;
    for (int32_t i = 0; i < wipe->getOrder().getSize(); ++i)
        first.push_back(wipe->getOrder().getDirectDataAt(i));
    ASSERT_EQ(first.size(), 100u);
    EXPECT_EQ(std::set<int32_t>(first.begin(), first.end()).size(), 100u);
    EXPECT_EQ(*std::min_element(first.begin(), first.end()), 0);
    EXPECT_EQ(*std::max_element(first.begin(), first.end()), 99);

    // The first step uncovers exactly the cell of the first entry.
    wipe->playStep();
    int32_t k = first[0];
    int32_t cellWidth = kPageWidth / 10 + 1;
    int32_t cellHeight = kPageHeight / 10 + 1;
    EXPECT_EQ(pixel(*page, k % 10 * cellWidth, k / 10 * cellHeight), kBlue);
    EXPECT_LE(countColour(*page, kBlue), int64_t(cellWidth) * cellHeight);

    tape->stopPlaying();
    tape->startPlaying(1);
    tick();
    ASSERT_EQ(tape->getPlayingObject(), wipe.get());
    std::vector<int32_t> second;
    for (int32_t i = 0; i < wipe->getOrder().getSize(); ++i)
        second.push_back(wipe->getOrder().getDirectDataAt(i));
    EXPECT_NE(first, second);
}

TEST_F(WipeOutTest, FadeGoesByTheClock)
{
    WipeOutPtr fade = startEffect(WipeOut::Fade);
    EXPECT_EQ(fade->getStepCount(), 100);
    // Halfway through the time the page is halfway between the two.
    layer.advance(1000);
    fade->playStep();
    uint32_t middle = pixel(*page, 80, 60);
    EXPECT_NEAR(double(middle >> 16), 128.0, 3.0);
    EXPECT_NEAR(double(middle & 0xFF), 128.0, 3.0);
    EXPECT_EQ(tape->getPlayingObject(), fade.get());
    // Once the time is up, the step is the last.
    layer.advance(1000);
    fade->playStep();
    EXPECT_EQ(tape->getPlayingObject(), nullptr);
    EXPECT_EQ(fade->getStep(), 101);
    EXPECT_EQ(countColour(*page, kBlue), int64_t(kPageWidth) * kPageHeight);

    // Stopping in the middle lets the pages go and leaves the page as it is.
    fade = startEffect(WipeOut::Fade);
    layer.advance(500);
    fade->playStep();
    tape->stopPlaying();
    EXPECT_EQ(tape->getPlayingObject(), nullptr);
    EXPECT_NE(pixel(*page, 80, 60), kBlue);
}

TEST_F(WipeOutTest, TheStageIsClearedOnlyWhenAsked)
{
    tape->addElement(*makeWipe(rgb(kBlue), WipeOut::Cut, false));
    int32_t stops = page->getStopActorsCount();
    int32_t resets = page->getResetActorsCount();
    tape->getAt(0)->drawOnPage();
    EXPECT_EQ(page->getResetActorsCount(), resets);
    EXPECT_EQ(page->getStopActorsCount(), stops);

    tape->addElement(*makeWipe(rgb(kGreen), WipeOut::WipeUp, true));
    tape->getAt(1)->drawOnPage();
    EXPECT_EQ(page->getResetActorsCount(), resets + 1);
    EXPECT_EQ(page->getStopActorsCount(), stops + 1);
    tape->startPlaying(1);
    resets = page->getResetActorsCount();
    tick();
    EXPECT_EQ(page->getResetActorsCount(), resets + 1);
    tape->stopPlaying();

    EXPECT_TRUE(static_cast<WipeOut*>(tape->getAt(0))->hitTest(KGraphicPoint(-100, 9000)));
    KStringBagPtr names = WipeOut::getEffectNames();
    ASSERT_EQ(names->getSize(), 10);
    EXPECT_EQ(*names->getStringAt(8), KString("CheckerBoard"));
}

TEST_F(WipeOutTest, ImageBackgroundsAndMissingFiles)
{
    std::filesystem::create_directories(scratch);
    std::string file = (scratch / "backdrop.png").string();
    KImagePtr picture(new KImage(KGraphicSize(4, 2)));
    picture->getDevice().fillRectangle(KGraphicRectangle(0, 0, 2, 2), rgb(kGreen));
    picture->getDevice().fillRectangle(KGraphicRectangle(2, 0, 2, 2), rgb(kRed));
    ASSERT_TRUE(picture->writeToPath(file.c_str()));

    WipeOutPtr wipe = makeWipe(rgb(kBlue));
    wipe->setBackground(WipeOut::ImageBackground);
    wipe->setImageFile(KFileReference(KPath(KString(file.c_str()), KPath::LinuxPlatform)));
    tape->addElement(*makeStroke({ { 80, 60 } }, 50, rgb(kBlue)));
    tape->addElement(*wipe);
    tape->goToPosition(2);
    // Stretched over the whole page, whatever the proportions.
    EXPECT_EQ(pixel(*page, 40, 60), kGreen);
    EXPECT_EQ(pixel(*page, 120, 60), kRed);

    KStringBagPtr names = tape->getMediaNames();
    ASSERT_EQ(names->getSize(), 1);
    EXPECT_EQ(*names->getStringAt(0), KString("backdrop.png"));
    EXPECT_TRUE(tape->usesMediaNamed("backdrop.png"));

    // A file that moved is found again in the folder given.
    std::filesystem::create_directories(scratch / "moved");
    std::filesystem::rename(file, scratch / "moved" / "backdrop.png");
    KDirectory moved(KPath(KString((scratch / "moved").string().c_str()), KPath::LinuxPlatform));
    EXPECT_FALSE(tape->findMissingMedia(moved, nullptr));
    EXPECT_TRUE(wipe->getImageFile().doesExist());
    KFileReference other(KPath(KString((scratch / "other.png").string().c_str()), KPath::LinuxPlatform));
    EXPECT_TRUE(tape->replaceMedia(wipe->getImageFile(), other));
    EXPECT_EQ(wipe->getImageFile().getPath(), other.getPath());

    // A missing file leaves the page black from the transition on.
    {
        ErrorRecorder recorder;
        tape->goToPosition(2);
        EXPECT_EQ(recorder.lastCode(), KError::UnsupportedFormat);
    }
    EXPECT_EQ(countColour(*page, kBlack), int64_t(kPageWidth) * kPageHeight);
    std::filesystem::remove_all(scratch);
}
