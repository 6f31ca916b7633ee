#include "tests/support/TestSupport.h"
#include "tests/tape/TapeTestSupport.h"

#include "kernel/KStringBag.h"
#include "kernel/KVariable.h"

using namespace tapetest;

namespace {

constexpr uint32_t kRed = 0xFF0000;
constexpr uint32_t kBlue = 0x0000FF;

class TapeEditTest : public TapeTest {
protected:
    // Three probes of types 1, 5 and 6 at positions 1 to 3.
    void addThree()
    {
        for (int32_t type : { WaitType, PauseType, SoundType })
            tape->addElement(*new ProbeElement(type));
    }
};

} // namespace

TEST_F(TapeEditTest, NewElementsGoInAtThePositionNotAtTheEnd)
{
    addThree();
    EXPECT_EQ(tape->getPosition(), 3);
    tape->setPositionQuietly(1);
    tape->clearModified();
    for (int32_t i = 0; i < 3; ++i)
        tape->getAt(i)->setPreviewValid(true);

    auto* inserted = new ProbeElement(TextType);
    tape->addElement(*inserted);
    EXPECT_EQ(tape->getAt(1), inserted);
    EXPECT_EQ(tape->getPosition(), 2);
    EXPECT_EQ(tape->getCurrentType(), TextType);
    EXPECT_EQ(tape->getTypeAtPosition(4), SoundType);
    EXPECT_EQ(inserted->getTape(), tape.get());
    EXPECT_TRUE(tape->isModified());
    // Previews are spoilt from the element before the new one onwards.
    EXPECT_TRUE(tape->getAt(0)->isPreviewValid());
    EXPECT_FALSE(tape->getAt(2)->isPreviewValid());
    EXPECT_FALSE(tape->getAt(3)->isPreviewValid());

    // A bookmark the tape has already is dropped; the element stays.
    tape->getAt(0)->setBookmark("Start");
    auto* duplicate = new ProbeElement(PauseType);
    duplicate->setBookmark("Start");
    tape->addElement(*duplicate);
    EXPECT_FALSE(duplicate->hasBookmark());
    EXPECT_EQ(tape->getCount(), 5);
    EXPECT_EQ(host.bookmarkRefreshes, 0);
    auto* marked = new ProbeElement(PauseType);
    marked->setBookmark("Middle");
    tape->addElement(*marked);
    EXPECT_EQ(host.bookmarkRefreshes, 1);
}

TEST_F(TapeEditTest, RemovingElements)
{
    // At position 0 the tape beeps and still counts as changed.
    tape->clearModified();
    tape->removeCurrentElement();
    EXPECT_EQ(host.beeps, 1);
    EXPECT_TRUE(tape->isModified());

    addThree();
    tape->getAt(2)->setBookmark("End");
    TapeObjectPtr last(tape->getAt(2));
    tape->removeCurrentElement();
    EXPECT_EQ(tape->getCount(), 2);
    EXPECT_EQ(tape->getPosition(), 2);
    EXPECT_FALSE(last->hasTape());
    EXPECT_EQ(host.bookmarkRefreshes, 1);

    // The lock keeps what stands before it.
    tape->setLockPosition(2);
    tape->removeCurrentElement();
    EXPECT_EQ(tape->getCount(), 2);
    tape->setLockPosition(-1);

    // A range: the position moves back for each removal while it is above
    // the first.
    addThree();
    addThree();
    EXPECT_EQ(tape->getCount(), 8);
    tape->setPositionQuietly(6);
    tape->removeRange(2, 4);
    EXPECT_EQ(tape->getCount(), 5);
    EXPECT_EQ(tape->getPosition(), 3);
    tape->setPositionQuietly(3);
    tape->removeRange(2, 10);
    EXPECT_EQ(tape->getCount(), 2);
    EXPECT_EQ(tape->getPosition(), 2);
}

TEST_F(TapeEditTest, InsertingATapeAndCopyingOne)
{
    addThree();
    tape->getAt(0)->setBookmark("One");
    tape->setPositionQuietly(1);
    TapePtr other = makeTape();
    other->addElement(*new ProbeElement(TextType));
    other->getAt(0)->setBookmark("One");
    other->addElement(*new ProbeElement(ImageType));
    tape->insertTape(*other);
    EXPECT_EQ(tape->getCount(), 5);
    EXPECT_EQ(tape->getPosition(), 3);
    EXPECT_EQ(tape->getTypeAtPosition(2), TextType);
    EXPECT_FALSE(tape->getAt(1)->hasBookmark());
    EXPECT_EQ(tape->getAt(1)->getTape(), tape.get());
    EXPECT_TRUE(host.alerts.empty());
    EXPECT_GE(page->getSynchroniseCount(), 1);

    // A frame of an actor says it is for stories and takes them all the same.
    TapePtr frame = makeTape();
    frame->setFrameKind(Tape::ActorFrame);
    frame->insertTape(*makeTape());
    ASSERT_EQ(host.alerts.size(), 1u);
    EXPECT_EQ(host.alerts[0], "TaleLoom: Only for stories, not for Actors!");

    // Copies skip the relay macros and take the settings.
    TapePtr strokes = makeTape();
    strokes->addElement(*makeStroke({ { 1, 1 } }, 4, rgb(kRed)));
    strokes->addElement(*new ProbeElement(RelayMacroType));
    strokes->addElement(*makeWipe(rgb(kBlue)));
    strokes->setLockPosition(1);
    strokes->setPlayInterval(33);
    strokes->setLooping(true);
    TapePtr copy(new Tape(*strokes));
    ASSERT_EQ(copy->getCount(), 2);
    EXPECT_EQ(copy->getAt(0)->getType(), StrokeType);
    EXPECT_EQ(copy->getAt(1)->getType(), PageTransitionType);
    EXPECT_NE(copy->getAt(0), strokes->getAt(0));
    EXPECT_EQ(copy->getAt(0)->getTape(), copy.get());
    EXPECT_EQ(copy->getPosition(), 2);
    EXPECT_EQ(copy->getLockPosition(), 1);
    EXPECT_EQ(copy->getPlayInterval(), 33);
    EXPECT_TRUE(copy->isLooping());
}

TEST_F(TapeEditTest, EditingTheCurrentElementByItsKind)
{
    tape->editCurrentElement();
    EXPECT_EQ(host.beeps, 1);

    tape->addElement(*makeStroke({ { 40, 40 }, { 80, 40 } }, 6, rgb(kRed)));
    tape->rebuildPage();
    host.chosenColour = rgb(kBlue);
    host.colourChosen = true;
    tape->editCurrentElement();
    EXPECT_EQ(static_cast<Stroke*>(tape->getCurrentElement())->getColour(), rgb(kBlue));
    EXPECT_EQ(pixel(*page, 60, 40), kBlue);

    tape->addElement(*new ProbeElement(SoundType));
    tape->editCurrentElement();
    ASSERT_EQ(host.dialogs.size(), 1u);
    EXPECT_EQ(host.dialogs[0], SoundType);

    tape->addElement(*new ProbeElement(ActorMotionType));
    tape->editCurrentElement();
    ASSERT_EQ(host.alerts.size(), 1u);
}

TEST_F(TapeEditTest, BookmarksAndWholeTapeOperations)
{
    tape->addElement(*makeStroke({ { 10, 10 }, { 30, 10 } }, 4, rgb(kRed)));
    tape->getAt(0)->setBookmark("First");
    tape->addElement(*new ProbeElement(PauseType));
    tape->addElement(*makeStroke({ { 50, 60 } }, 10, rgb(kRed)));
    tape->getAt(2)->setBookmark("Third");

    KBagPtr names = tape->getBookmarkNames();
    ASSERT_EQ(names->getSize(), 2);
    EXPECT_EQ(*static_cast<KString*>(names->getAt(1)), KString("Third"));
    KNamedBagPtr map = tape->getBookmarkMap();
    EXPECT_EQ(static_cast<KVariable*>(map->findNamedObject("Third"))->getLong(), 2);
    EXPECT_TRUE(tape->hasBookmark("First"));
    EXPECT_FALSE(tape->hasBookmark("Second"));

    tape->goToBookmark("First");
    EXPECT_EQ(tape->getPosition(), 1);
    tape->goToBookmark("Nowhere");
    EXPECT_EQ(tape->getPosition(), 1);

    KGraphicRectangle bounds;
    tape->getBounds(bounds);
    EXPECT_EQ(bounds, KGraphicRectangle(8, 8, 47, 57));
    tape->moveAll(10, 0);
    tape->getBounds(bounds);
    EXPECT_EQ(bounds.x, 18);
    // Each stroke is scaled and moved away from the centre of the whole.
    tape->scaleAll(2.0, 2.0);
    tape->getBounds(bounds);
    EXPECT_EQ(bounds.width, 94);
    EXPECT_EQ(bounds.height, 114);
    tape->mirrorAll(true, 0);
    tape->getBounds(bounds);
    EXPECT_LT(bounds.x, 0);
}
