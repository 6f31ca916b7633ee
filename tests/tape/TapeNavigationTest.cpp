#include "tests/support/TestSupport.h"
#include "tests/tape/TapeTestSupport.h"

using namespace tapetest;

namespace {

constexpr uint32_t kRed = 0xFF0000;
constexpr uint32_t kGreen = 0x00FF00;
constexpr uint32_t kBlue = 0x0000FF;
constexpr uint32_t kWhite = 0xFFFFFF;
constexpr uint32_t kBlack = 0x000000;

class TapeNavigationTest : public TapeTest {
protected:
    // Index: 0 stroke, 1 wait, 2 transition, 3 stroke, 4 sound, 5 transition, 6 stroke.
    void buildPages()
    {
        tape->addElement(*makeStroke({ { 10, 10 } }, 8, rgb(kRed)));
        tape->addElement(*new ProbeElement(WaitType));
        tape->addElement(*makeWipe(rgb(kBlue)));
        tape->addElement(*makeStroke({ { 30, 30 } }, 8, rgb(kRed)));
        tape->addElement(*new ProbeElement(SoundType));
        tape->addElement(*makeWipe(rgb(kGreen)));
        tape->addElement(*makeStroke({ { 50, 50 } }, 8, rgb(kRed)));
    }
};

} // namespace

TEST_F(TapeNavigationTest, WalkingRespectsTheLockAndMarksTheStoryModified)
{
    buildPages();
    tape->clearModified();
    tape->goToPosition(3);
    EXPECT_EQ(tape->getPosition(), 3);
    EXPECT_TRUE(tape->isModified());
    EXPECT_EQ(host.tools.back(), PageTransitionType);
    ASSERT_FALSE(host.hides.empty());
    EXPECT_FALSE(host.hides.back());

    // Before the lock nothing happens, not even a redraw.
    tape->setLockPosition(2);
    int32_t redraws = host.redraws;
    tape->goToPosition(1);
    EXPECT_EQ(tape->getPosition(), 3);
    EXPECT_EQ(host.redraws, redraws);
    tape->stepBack();
    EXPECT_EQ(tape->getPosition(), 2);
    tape->stepBack();
    EXPECT_EQ(tape->getPosition(), 2);
    tape->goToStart();
    EXPECT_EQ(tape->getPosition(), 3);
    tape->setLockPosition(-1);

    tape->goToPosition(99);
    EXPECT_EQ(tape->getPosition(), 7);
    tape->goToStart();
    EXPECT_EQ(tape->getPosition(), 0);
    EXPECT_EQ(host.tools.back(), NoTapeObject);
    tape->goToEnd();
    EXPECT_EQ(tape->getPosition(), 7);

    // One step forward draws just that element and restores the page
    // under the highlight first.
    tape->goToPosition(3);
    redraws = host.redraws;
    tape->stepForward();
    EXPECT_EQ(tape->getPosition(), 4);
    EXPECT_EQ(host.redraws, redraws);
    EXPECT_TRUE(host.hides.back());
    EXPECT_EQ(pixel(*page, 30, 30), kRed);

    // A frame of an actor does not count walking as a change.
    TapePtr frame = makeTape();
    frame->setFrameKind(Tape::ActorFrame);
    frame->addElement(*makeStroke({ { 10, 10 } }, 8, rgb(kRed)));
    frame->clearModified();
    frame->stepBack();
    EXPECT_EQ(frame->getPosition(), 0);
    EXPECT_FALSE(frame->isModified());
}

TEST_F(TapeNavigationTest, SearchesAndJumps)
{
    buildPages();
    // The backward page search never looks at index 0.
    EXPECT_EQ(tape->findPreviousPage(7), 5);
    EXPECT_EQ(tape->findPreviousPage(5), 2);
    EXPECT_EQ(tape->findPreviousPage(2), 0);
    EXPECT_EQ(tape->findNextPage(3), 5);
    EXPECT_EQ(tape->findNextPage(6), 7);
    EXPECT_EQ(tape->findNextPage(9), 9);
    EXPECT_EQ(tape->findPreviousStop(7), 5);
    EXPECT_EQ(tape->findPreviousStop(5), 4);
    EXPECT_EQ(tape->findNextStop(0), 2);
    EXPECT_EQ(tape->findNextStop(6), 7);

    tape->setPositionQuietly(7);
    EXPECT_EQ(tape->findPreviousOfType(StrokeType), 4);
    EXPECT_EQ(tape->findPreviousOfType(MovieType), -1);
    tape->setPositionQuietly(0);
    EXPECT_EQ(tape->findNextOfType(PageTransitionType), 3);

    // Kind 1 is a text, kind 5 a page transition, kind 2 a sound.
    tape->goToNextOfKind(5);
    EXPECT_EQ(tape->getPosition(), 3);
    tape->goToNextOfKind(2);
    EXPECT_EQ(tape->getPosition(), 5);
    tape->goToPreviousOfKind(0);
    EXPECT_EQ(tape->getPosition(), 4);
    tape->goToNextOfKind(10);
    EXPECT_EQ(tape->getPosition(), 4);

    tape->goToNextPage();
    EXPECT_EQ(tape->getPosition(), 5);
    tape->goToPreviousPage();
    EXPECT_EQ(tape->getPosition(), 2);
    tape->goToPreviousPage();
    EXPECT_EQ(tape->getPosition(), 0);

    // A text that speaks is a stop, one that does not is not.
    auto* speaking = new ProbeElement(TextType);
    speaking->speaking = true;
    tape->addElement(*speaking);
    tape->addElement(*new ProbeElement(TextType));
    EXPECT_EQ(tape->findNextStop(0), 0);
    EXPECT_EQ(tape->findNextStop(1), 4);
}

TEST_F(TapeNavigationTest, RebuildStartsAtTheLastTransitionBeforeTheLimit)
{
    buildPages();
    tape->getPageCache().setEnabled(false);

    tape->goToPosition(7);
    EXPECT_EQ(pixel(*page, 100, 100), kGreen);
    EXPECT_EQ(pixel(*page, 50, 50), kRed);
    EXPECT_EQ(pixel(*page, 30, 30), kGreen);
    EXPECT_EQ(tape->getPageCache().getLastDrawn(), 2);

    // At the transition itself the page is that transition's.
    tape->goToPosition(6);
    EXPECT_EQ(pixel(*page, 100, 100), kGreen);
    EXPECT_EQ(tape->getPageCache().getLastDrawn(), 1);
    tape->goToPosition(5);
    EXPECT_EQ(pixel(*page, 100, 100), kBlue);
    EXPECT_EQ(pixel(*page, 30, 30), kRed);
    tape->goToPosition(2);
    EXPECT_EQ(pixel(*page, 100, 100), kBlack);
    EXPECT_EQ(pixel(*page, 10, 10), kRed);
    EXPECT_EQ(tape->getPageCache().getLastDrawn(), 2);

    // A transition at index 0 is not found, so the page starts black and
    // it is drawn as the first element.
    TapePtr opening = makeTape(&page);
    opening->getPageCache().setEnabled(false);
    opening->addElement(*makeWipe(rgb(kWhite)));
    opening->addElement(*makeStroke({ { 10, 10 } }, 8, rgb(kRed)));
    opening->goToPosition(2);
    EXPECT_EQ(opening->getPageCache().getLastDrawn(), 2);
    EXPECT_EQ(pixel(*page, 100, 100), kWhite);
    EXPECT_EQ(pixel(*page, 10, 10), kRed);
    opening->goToPosition(1);
    EXPECT_EQ(opening->getPageCache().getLastDrawn(), 1);
    opening->goToPosition(0);
    EXPECT_EQ(pixel(*page, 100, 100), kBlack);
}

TEST_F(TapeNavigationTest, InactiveAndActorElementsAreNotDrawn)
{
    auto* action = new ProbeElement(ActorActionType);
    auto* motion = new ProbeElement(ActorMotionType);
    auto* wait = new ProbeElement(WaitType);
    tape->addElement(*makeWipe(rgb(kBlue), WipeOut::Cut, false));
    tape->addElement(*action);
    tape->addElement(*wait);
    tape->addElement(*makeStroke({ { 20, 20 } }, 8, rgb(kRed)));
    tape->addElement(*motion);
    tape->addElement(*makeWipe(rgb(kGreen), WipeOut::Cut, true));
    tape->addElement(*makeStroke({ { 60, 60 } }, 8, rgb(kRed)));
    tape->getAt(6)->deactivate();

    tape->goToPosition(7);
    EXPECT_EQ(action->draws, 0);
    EXPECT_EQ(motion->draws, 0);
    EXPECT_EQ(pixel(*page, 60, 60), kGreen);
    // The actors are replayed from the last transition that cleared them.
    EXPECT_EQ(page->getSynchronisedFirst(), 5);
    EXPECT_EQ(page->getSynchronisedLimit(), 7);

    tape->goToPosition(5);
    EXPECT_EQ(wait->draws, 1);
    EXPECT_EQ(action->draws, 0);
    EXPECT_EQ(motion->draws, 0);
    EXPECT_EQ(pixel(*page, 20, 20), kRed);
    EXPECT_EQ(page->getSynchronisedFirst(), 0);

    // Still counted and still in the way of positions.
    tape->getAt(3)->deactivate();
    tape->goToPosition(4);
    EXPECT_EQ(pixel(*page, 20, 20), kBlue);
    EXPECT_EQ(tape->getCount(), 7);
}
