#include "tests/support/TestSupport.h"
#include "tests/tape/TapeTestSupport.h"

#include "kernel/KClass.h"
#include "kernel/KClassStreamState.h"
#include "kernel/KJsonWriter.h"

#include <random>

using namespace tapetest;

namespace {

constexpr uint32_t kRed = 0xFF0000;
constexpr uint32_t kBlue = 0x0000FF;

int32_t longAt(const std::vector<uint8_t>& bytes, size_t offset)
{
    return int32_t(uint32_t(bytes[offset]) << 24 | uint32_t(bytes[offset + 1]) << 16 | uint32_t(bytes[offset + 2]) << 8
                   | uint32_t(bytes[offset + 3]));
}

// Where the class id stands twice in a row: an element's tag and the head
// of its class stream. The `n`th such place.
size_t findTaggedElement(const std::vector<uint8_t>& bytes, int32_t id, int32_t n)
{
    for (size_t i = 0; i + 8 <= bytes.size(); ++i) {
        if (longAt(bytes, i) == id && longAt(bytes, i + 4) == id && n-- == 0)
            return i;
    }
    return std::string::npos;
}

class TapePersistenceTest : public TapeTest {
protected:
    void TearDown() override
    {
        KClassStreamState::reset();
        TapeTest::TearDown();
    }
    void fillStory()
    {
        tape->addElement(*makeStroke({ { 10, 20 }, { 90, 70 }, { 30, 100 } }, 9, rgb(kRed)));
        tape->getAt(0)->setBookmark("Opening");
        WipeOutPtr wipe = makeWipe(rgb(0x336699), WipeOut::WipeLeft, false);
        wipe->setImageFile(KFileReference(KPath(KString("/tmp/pictures/sky.png"), KPath::LinuxPlatform)));
        tape->addElement(*wipe);
        tape->addElement(*makeStroke({ { 120, 30 } }, 15, rgb(kBlue)));
        tape->addElement(*makeStroke({ { 20, 20 }, { 140, 100 } }, 3, rgb(0xFFFF00)));
        tape->getAt(3)->deactivate();
        tape->setPositionQuietly(3);
        tape->setPlayInterval(31);
        tape->setLooping(true);
        tape->setLockPosition(2);
    }
    // Every element of the tape knows the tape and the position is in range.
    void expectConsistent(Tape& read)
    {
        EXPECT_GE(read.getPosition(), 0);
        EXPECT_LE(read.getPosition(), read.getCount());
        for (int32_t i = 0; i < read.getCount(); ++i) {
            ASSERT_NE(read.getAt(i), nullptr);
            EXPECT_EQ(read.getAt(i)->getTape(), &read);
        }
    }
};

} // namespace

TEST_F(TapePersistenceTest, ElementRecordsNestTheirBaseClasses)
{
    StrokePtr stroke = makeStroke({ { 1, 2 } }, 5, rgb(kRed));
    stroke->setBookmark("B");
    std::vector<uint8_t> bytes = streamOf(*stroke);
    ASSERT_GE(bytes.size(), 80u);
    EXPECT_EQ(longAt(bytes, 0), Stroke::classRecord->getClassID());
    EXPECT_EQ(longAt(bytes, 4), 1);
    EXPECT_EQ(longAt(bytes, 8), int32_t(bytes.size()) - 16);
    EXPECT_EQ(longAt(bytes, 12), 1);
    EXPECT_EQ(longAt(bytes, 16), 1);
    EXPECT_EQ(longAt(bytes, 24), TapeGraphicObject::classRecord->getClassID());
    EXPECT_EQ(longAt(bytes, 48), TapeObject::classRecord->getClassID());
    // The base's section 1: the type in 16 bits, the flag, the bookmark.
    EXPECT_EQ(longAt(bytes, 64), 1);
    EXPECT_EQ(bytes[72], 0);
    EXPECT_EQ(bytes[73], StrokeType);
    EXPECT_EQ(bytes[74], 1);
    EXPECT_EQ(longAt(bytes, 75), KString::classRecord->getClassID());

    // The number in the file is replaced by the class's own.
    bytes[73] = 9;
    StrokePtr read(new Stroke());
    EXPECT_EQ(readStream(*read, bytes), 0);
    EXPECT_EQ(read->getType(), StrokeType);
    EXPECT_EQ(read->getBookmark(), "B");
    EXPECT_EQ(read->getPoint(0), KGraphicPoint(1, 2));
    EXPECT_EQ(read->getBrushWidth(), 5);
}

TEST_F(TapePersistenceTest, ATapeWithStrokesAndATransitionComesBackWhole)
{
    fillStory();
    tape->clearModified();
    tape->setPositionQuietly(3);
    ASSERT_TRUE(tape->isModified());
    std::vector<uint8_t> bytes = streamOf(*tape);
    EXPECT_FALSE(tape->isModified());
    EXPECT_TRUE(tape->getFlags().test(Tape::SavedOnce));

    ImageTapePagePtr readPage;
    TapePtr read = makeTape(&readPage);
    read->addElement(*makeStroke({ { 5, 5 } }, 4, rgb(kRed)));
    EXPECT_EQ(readStream(*read, bytes), 0);
    expectConsistent(*read);
    ASSERT_EQ(read->getCount(), 4);
    EXPECT_EQ(read->getPosition(), 3);
    EXPECT_EQ(read->getPlayInterval(), 31);
    EXPECT_EQ(read->getLockPosition(), 2);
    EXPECT_TRUE(read->isLooping());
    EXPECT_TRUE(read->getFlags().test(Tape::SavedOnce));
    EXPECT_EQ(read->getFrameKind(), Tape::Story);
    EXPECT_EQ(read->getAt(0)->getBookmark(), "Opening");
    EXPECT_FALSE(read->getAt(3)->isActive());

    auto* stroke = dynamic_cast<Stroke*>(read->getAt(0));
    ASSERT_NE(stroke, nullptr);
    EXPECT_EQ(stroke->getPointCount(), 3);
    EXPECT_EQ(stroke->getPoint(2), KGraphicPoint(30, 100));
    EXPECT_EQ(stroke->getBrushWidth(), 9);
    EXPECT_EQ(stroke->getColour(), rgb(kRed));
    auto* wipe = dynamic_cast<WipeOut*>(read->getAt(1));
    ASSERT_NE(wipe, nullptr);
    EXPECT_EQ(wipe->getEffect(), WipeOut::WipeLeft);
    EXPECT_FALSE(wipe->getRemovesActors());
    EXPECT_EQ(wipe->getColour(), rgb(0x336699));
    EXPECT_EQ(wipe->getImageFile().getObjectName(), "sky.png");

    // And it draws the same pages.
    for (int32_t p = 0; p <= 4; ++p) {
        tape->goToPosition(p);
        read->goToPosition(p);
        EXPECT_EQ(pixels(*readPage), pixels(*page)) << p;
    }

    // The document inspector sees the fields.
    KJsonWriter json(0);
    json.object(read.get());
    for (const char* field : { "\"position\":4", "\"lockPosition\":2", "\"brushWidth\":9", "\"effect\":4",
                               "\"removesActors\":false", "\"bookmark\":\"Opening\"" })
        EXPECT_NE(json.getText().find(field), std::string::npos) << field;

    // Without a lock the second section is left out.
    tape->setLockPosition(-1);
    std::vector<uint8_t> unlocked = streamOf(*tape);
    EXPECT_EQ(unlocked.size() + 12, bytes.size());
    EXPECT_EQ(readStream(*read, unlocked), 0);
    EXPECT_EQ(read->getLockPosition(), -1);
}

TEST_F(TapePersistenceTest, UnknownElementsAreDroppedAndThePositionCut)
{
    fillStory();
    tape->setPositionQuietly(4);
    std::vector<uint8_t> bytes = streamOf(*tape);
    size_t second = findTaggedElement(bytes, Stroke::classRecord->getClassID(), 1);
    ASSERT_NE(second, std::string::npos);
    // An element of a class this program does not know.
    bytes[second] = 0x7E;

    KClassStreamState::reset();
    KClassStreamState::setUnknownClassPolicy(KClassStreamState::KeepNullSlot);
    TapePtr read = makeTape();
    EXPECT_EQ(readStream(*read, bytes), 0);
    EXPECT_EQ(KClassStreamState::unknownClassPolicy(), KClassStreamState::KeepNullSlot);
    EXPECT_EQ(KClassStreamState::droppedObjects(), 1);
    EXPECT_EQ(KClassStreamState::nulledObjects(), 0);
    ASSERT_EQ(read->getCount(), 3);
    EXPECT_EQ(read->getPosition(), 3);
    EXPECT_EQ(read->getAt(2)->getType(), StrokeType);
    expectConsistent(*read);
}

TEST_F(TapePersistenceTest, DamagedStreamsFailCleanly)
{
    fillStory();
    std::vector<uint8_t> whole = streamOf(*tape);
    for (size_t cut = 0; cut < whole.size(); ++cut) {
        SCOPED_TRACE(cut);
        TapePtr read = makeTape();
        std::vector<uint8_t> part(whole.begin(), whole.begin() + long(cut));
        EXPECT_NE(readStream(*read, part), 0);
        expectConsistent(*read);
    }

    std::mt19937 random(11);
    ErrorRecorder recorder;
    for (int32_t round = 0; round < 400; ++round) {
        std::vector<uint8_t> bytes = whole;
        for (int32_t flips = 1 + round % 4; flips > 0; --flips)
            bytes[random() % bytes.size()] = uint8_t(random());
        TapePtr read = makeTape();
        readStream(*read, bytes);
        expectConsistent(*read);
        // What was read can be drawn and written again.
        read->goToEnd();
        streamOf(*read);
    }
}
