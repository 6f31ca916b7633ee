#include "tests/support/TestSupport.h"
#include "tests/tape/TapeTestSupport.h"

#include <random>

using namespace tapetest;

namespace {

class TapeCacheTest : public TapeTest {
protected:
    void SetUp() override
    {
        TapeTest::SetUp();
        everyElements(3);
    }
    // Snapshots by count alone, so that where they fall is known.
    void everyElements(int32_t count, int64_t budget = int64_t(64) << 20)
    {
        TapePageCache::Policy policy;
        policy.memoryBudget = budget;
        policy.minElements = count;
        policy.minMicroseconds = 0;
        tape->getPageCache().setPolicy(policy);
    }
    // Strokes of random places, sizes and colours at the position.
    void addStrokes(int32_t count)
    {
        std::uniform_int_distribution<int32_t> coordinate(-10, 170);
        std::uniform_int_distribution<int32_t> size(1, 24);
        std::uniform_int_distribution<int32_t> points(1, 6);
        for (int32_t i = 0; i < count; ++i) {
            std::vector<std::pair<int16_t, int16_t>> path;
            for (int32_t p = points(random); p > 0; --p)
                path.emplace_back(int16_t(coordinate(random)), int16_t(coordinate(random)));
            tape->addElement(*makeStroke(path, int16_t(size(random)), rgb(random() & 0xFFFFFF)));
        }
    }
    void expectPageAsRebuilt()
    {
        ASSERT_EQ(pixels(*page), referencePage(*tape, tape->getPosition())) << "at " << tape->getPosition();
    }
    TapePageCache& cache() { return tape->getPageCache(); }

    std::mt19937 random { 7 };
};

} // namespace

TEST_F(TapeCacheTest, WalkingBackFromSnapshotsGivesThePixelsOfARebuild)
{
    addStrokes(20);
    tape->addElement(*makeWipe(rgb(0x203040)));
    addStrokes(20);
    tape->goToEnd();
    expectPageAsRebuilt();
    // The page from the transition on: snapshots every third element.
    EXPECT_TRUE(cache().hasSnapshotAt(23));
    EXPECT_TRUE(cache().hasSnapshotAt(41));
    EXPECT_FALSE(cache().hasSnapshotAt(20));
    EXPECT_EQ(cache().getLastDrawn(), 21);

    int32_t hits = cache().getHits();
    while (tape->getPosition() > 0) {
        tape->stepBack();
        expectPageAsRebuilt();
        if (tape->getPosition() > 21) {
            EXPECT_LE(cache().getLastDrawn(), 2);
        }
    }
    EXPECT_GT(cache().getHits(), hits + 15);
    // The first page was drawn once from its start and kept on the way.
    EXPECT_TRUE(cache().hasSnapshotAt(18));

    // Forward again, from the snapshots of both pages.
    for (int32_t p = 0; p <= tape->getCount(); p += 7) {
        tape->goToPosition(p);
        expectPageAsRebuilt();
    }
}

TEST_F(TapeCacheTest, EditsAtOrBeforeASnapshotSpoilIt)
{
    addStrokes(30);
    tape->goToEnd();
    EXPECT_TRUE(cache().hasSnapshotAt(9));
    EXPECT_TRUE(cache().hasSnapshotAt(12));

    // An insertion drops the snapshots behind it at once.
    tape->setPositionQuietly(10);
    tape->addElement(*makeStroke({ { 80, 60 }, { 20, 20 } }, 30, rgb(0xFFFFFF)));
    EXPECT_TRUE(cache().hasSnapshotAt(9));
    EXPECT_FALSE(cache().hasSnapshotAt(12));
    tape->goToEnd();
    expectPageAsRebuilt();

    // So does a removal.
    tape->goToPosition(5);
    tape->removeCurrentElement();
    EXPECT_FALSE(cache().hasSnapshotAt(6));
    tape->goToEnd();
    expectPageAsRebuilt();

    // Switching an element off or on, or changing it, spoils the snapshots
    // behind it although nobody told the tape.
    tape->getAt(7)->deactivate();
    tape->goToEnd();
    expectPageAsRebuilt();
    tape->goToPosition(15);
    expectPageAsRebuilt();
    tape->getAt(7)->activate();
    tape->goToPosition(16);
    expectPageAsRebuilt();
    static_cast<Stroke*>(tape->getAt(2))->setColour(rgb(0x00FFFF));
    tape->goToEnd();
    expectPageAsRebuilt();
    static_cast<Stroke*>(tape->getAt(11))->moveBy(7, -3);
    tape->stepBack();
    expectPageAsRebuilt();
    tape->scaleAll(0.5, 0.5);
    tape->goToPosition(20);
    expectPageAsRebuilt();

    // Even a removal behind the tape's back, through the bag itself.
    tape->removeAt(3);
    tape->setPositionQuietly(tape->getCount());
    tape->rebuildPage();
    expectPageAsRebuilt();
}

TEST_F(TapeCacheTest, MemoryIsBoundedAndTheSpacingGrows)
{
    int64_t pageBytes = int64_t(kPageWidth) * kPageHeight * 4;
    everyElements(1, pageBytes * 5);
    addStrokes(100);
    tape->goToEnd();
    EXPECT_LE(cache().snapshotCount(), 5);
    EXPECT_LE(cache().bytesUsed(), pageBytes * 5);
    EXPECT_GE(cache().getSpacing(), 16);
    std::vector<int32_t> kept = cache().snapshotIndices();
    ASSERT_GE(kept.size(), 2u);
    // Spread over the tape rather than bunched at its end.
    EXPECT_LT(kept.front(), 50);
    for (int32_t i = 0; i < 10; ++i) {
        tape->stepBack();
        expectPageAsRebuilt();
    }

    // A frame of an actor is always drawn in full; a switched-off cache
    // keeps nothing.
    tape->setFrameKind(Tape::ActorFrame);
    tape->goToPosition(50);
    EXPECT_EQ(cache().snapshotCount(), 0);
    EXPECT_EQ(cache().getLastDrawn(), 50);
    tape->setFrameKind(Tape::Story);
    cache().setEnabled(false);
    tape->goToEnd();
    EXPECT_EQ(cache().snapshotCount(), 0);
    expectPageAsRebuilt();
}
