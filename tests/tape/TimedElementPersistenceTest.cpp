// The class streams of the sound, speech, pause and wait elements, read at
// their byte offsets, and their way through a whole tape and a copy.

#include "tests/graphics/StreamTestSupport.h"
#include "tests/support/TestSupport.h"
#include "tests/tape/TimedElementTestSupport.h"

#include "kernel/KClass.h"
#include "kernel/KClassStreamState.h"
#include "kmultimedia/KSpeech.h"
#include "tape/StylusPause.h"
#include "tape/StylusSound.h"
#include "tape/StylusSpeech.h"
#include "tape/WaitObject.h"

#include <cmath>
#include <cstring>

using namespace tapetest;
using namespace timedtest;

namespace {

int32_t longAt(const std::vector<uint8_t>& bytes, size_t offset) { return int32_t(streams::longAt(bytes, offset)); }

using streams::doubleAt;

void putDouble(std::vector<uint8_t>& bytes, size_t offset, double value) { streams::putDoubleAt(bytes, offset, value); }

// The frame of an element's stream: its own class record whose section 1
// begins with the whole record of TapeObject. The offset where the
// element's own fields begin.
size_t checkFrame(const std::vector<uint8_t>& bytes, const KClass* own, int32_t type)
{
    EXPECT_GE(bytes.size(), 52u);
    EXPECT_EQ(longAt(bytes, 0), own->getClassID());
    EXPECT_EQ(longAt(bytes, 4), 1);
    EXPECT_EQ(longAt(bytes, 8), int32_t(bytes.size()) - 16);
    EXPECT_EQ(longAt(bytes, 12), 1);
    EXPECT_EQ(longAt(bytes, 16), 1);
    EXPECT_EQ(longAt(bytes, 20), int32_t(bytes.size()) - 16);
    EXPECT_EQ(longAt(bytes, 24), TapeObject::classRecord->getClassID());
    EXPECT_EQ(bytes[48], 0);
    EXPECT_EQ(bytes[49], type);
    EXPECT_EQ(bytes[50], 1);
    return size_t(24 + 16 + longAt(bytes, 32));
}

class TimedElementPersistenceTest : public TimedElementTest {
protected:
    void TearDown() override
    {
        KClassStreamState::reset();
        TimedElementTest::TearDown();
    }
};

} // namespace

TEST_F(TimedElementPersistenceTest, APauseKeepsItsTimeInThirtyTwoBitsAndANegativeOneReadsAsZero)
{
    StylusPausePtr pause(new StylusPause());
    pause->setDuration(70000);
    pause->setBookmark("Breath");
    std::vector<uint8_t> bytes = streamOf(*pause);
    size_t own = checkFrame(bytes, StylusPause::classRecord, PauseType);
    ASSERT_EQ(own + 4, bytes.size());
    EXPECT_EQ(longAt(bytes, own), 70000);

    bytes[49] = 3; // the stored type is replaced by the class's own
    StylusPausePtr read(new StylusPause());
    ASSERT_EQ(readStream(*read, bytes), 0);
    EXPECT_EQ(read->getType(), PauseType);
    EXPECT_EQ(read->getDuration(), 70000);
    EXPECT_EQ(read->getBookmark(), "Breath");

    bytes[own] = 0xFF; // a negative time
    ASSERT_EQ(readStream(*read, bytes), 0);
    EXPECT_EQ(read->getDuration(), 0);
}

TEST_F(TimedElementPersistenceTest, AWaitKeepsItsSixFlagsInTheOrderOfTheDialog)
{
    WaitObjectPtr wait(new WaitObject());
    std::vector<uint8_t> defaults = streamOf(*wait);
    size_t own = checkFrame(defaults, WaitObject::classRecord, WaitType);
    ASSERT_EQ(own + 6, defaults.size());
    EXPECT_EQ(std::vector<uint8_t>(defaults.begin() + long(own), defaults.end()),
              std::vector<uint8_t>({ 0, 0, 1, 1, 1, 1 }));

    wait->setWaitForSounds(true);
    wait->setWaitForUser(false);
    wait->setStopSpeech(false);
    wait->deactivate();
    std::vector<uint8_t> bytes = streamOf(*wait);
    EXPECT_EQ(std::vector<uint8_t>(bytes.begin() + long(own), bytes.end()), std::vector<uint8_t>({ 1, 0, 0, 1, 1, 0 }));
    EXPECT_EQ(bytes[50], 0);
    WaitObjectPtr read(new WaitObject());
    ASSERT_EQ(readStream(*read, bytes), 0);
    EXPECT_TRUE(read->getWaitForSounds());
    EXPECT_FALSE(read->getWaitForSpeech());
    EXPECT_FALSE(read->getWaitForUser());
    EXPECT_TRUE(read->getVisualWarning());
    EXPECT_TRUE(read->getStopSounds());
    EXPECT_FALSE(read->getStopSpeech());
    EXPECT_FALSE(read->isActive());
    EXPECT_EQ(streamOf(*read), bytes);
}

TEST_F(TimedElementPersistenceTest, ASoundKeepsItsFileThenTheWaitThenTheVolumeAsADouble)
{
    StylusSoundPtr sound(new StylusSound());
    sound->setFile(mediatest::referenceTo(folder / "owl.wav"));
    sound->setWaitForEnd(false);
    sound->setVolume(0.75);
    std::vector<uint8_t> bytes = streamOf(*sound);
    size_t own = checkFrame(bytes, StylusSound::classRecord, SoundType);
    EXPECT_EQ(longAt(bytes, own), KFileReference::classRecord->getClassID());
    size_t fileEnd = own + 16 + size_t(longAt(bytes, own + 8));
    ASSERT_EQ(fileEnd + 9, bytes.size());
    EXPECT_EQ(bytes[fileEnd], 0);
    EXPECT_DOUBLE_EQ(doubleAt(bytes, fileEnd + 1), 0.75);

    StylusSoundPtr read(new StylusSound());
    ASSERT_EQ(readStream(*read, bytes), 0);
    EXPECT_EQ(read->getType(), SoundType);
    EXPECT_EQ(read->getFile().getPath(), sound->getFile().getPath());
    EXPECT_FALSE(read->getWaitForEnd());
    EXPECT_DOUBLE_EQ(read->getVolume(), 0.75);
    EXPECT_EQ(streamOf(*read), bytes);

    // Volumes out of range or not a number are cut as they are read.
    putDouble(bytes, fileEnd + 1, std::nan(""));
    ASSERT_EQ(readStream(*read, bytes), 0);
    EXPECT_DOUBLE_EQ(read->getVolume(), 0.0);
    putDouble(bytes, fileEnd + 1, 4.5);
    ASSERT_EQ(readStream(*read, bytes), 0);
    EXPECT_DOUBLE_EQ(read->getVolume(), 1.0);

    // A stream cut short is an error, not a crash.
    bytes.resize(fileEnd + 3);
    EXPECT_NE(readStream(*read, bytes), 0);
}

TEST_F(TimedElementPersistenceTest, ASpeechKeepsTextVoiceWaitAndVolumeAndGivesThemToItsMedium)
{
    StylusSpeechPtr speech(new StylusSpeech());
    speech->setText("The end");
    speech->setVoice("Italian");
    speech->setVolume(0.25);
    std::vector<uint8_t> bytes = streamOf(*speech);
    size_t own = checkFrame(bytes, StylusSpeech::classRecord, SpeechType);
    EXPECT_EQ(longAt(bytes, own), KString::classRecord->getClassID());
    size_t voiceAt = own + 16 + size_t(longAt(bytes, own + 8));
    EXPECT_EQ(longAt(bytes, voiceAt), KString::classRecord->getClassID());
    size_t voiceEnd = voiceAt + 16 + size_t(longAt(bytes, voiceAt + 8));
    ASSERT_EQ(voiceEnd + 9, bytes.size());
    EXPECT_EQ(bytes[voiceEnd], 1);
    EXPECT_DOUBLE_EQ(doubleAt(bytes, voiceEnd + 1), 0.25);

    StylusSpeechPtr read(new StylusSpeech());
    ASSERT_EQ(readStream(*read, bytes), 0);
    EXPECT_EQ(read->getText(), "The end");
    EXPECT_EQ(read->getVoice(), "Italian");
    EXPECT_TRUE(read->getWaitForEnd());
    EXPECT_EQ(read->getSpeech().getText(), "The end");
    EXPECT_EQ(read->getSpeech().getVoiceName(), "Italian");
    EXPECT_DOUBLE_EQ(read->getSpeech().getVolume(), 0.25);
    EXPECT_EQ(streamOf(*read), bytes);
}

TEST_F(TimedElementPersistenceTest, ATapeOfAllFourComesBackAndCopiesHaveNoMediumYet)
{
    StylusSoundPtr sound(new StylusSound());
    sound->setFile(mediatest::referenceTo(soundFile("drum.wav")));
    tape->addElement(*sound);
    auto* speech = new StylusSpeech();
    speech->setText("Hi");
    tape->addElement(*speech);
    auto* pause = new StylusPause();
    pause->setDuration(300);
    tape->addElement(*pause);
    auto* wait = new WaitObject();
    wait->setVisualWarning(false);
    tape->addElement(*wait);

    std::vector<uint8_t> bytes = streamOf(*tape);
    TapePtr read(new Tape());
    ASSERT_EQ(readStream(*read, bytes), 0);
    ASSERT_EQ(read->getCount(), 4);
    EXPECT_NE(dynamic_cast<StylusSound*>(read->getAt(0)), nullptr);
    EXPECT_EQ(static_cast<StylusSpeech*>(read->getAt(1))->getText(), "Hi");
    EXPECT_EQ(static_cast<StylusPause*>(read->getAt(2))->getDuration(), 300);
    EXPECT_FALSE(static_cast<WaitObject*>(read->getAt(3))->getVisualWarning());
    for (int32_t i = 0; i < 4; ++i)
        EXPECT_TRUE(read->getAt(i)->getBounds().isEmpty());

    // A copy plays with a medium of its own.
    tape->startPlaying(0);
    tick();
    ASSERT_NE(sound->getSound(), nullptr);
    TapePtr copy(new Tape(*tape));
    auto* copied = static_cast<StylusSound*>(copy->getAt(0));
    EXPECT_EQ(copied->getSound(), nullptr);
    EXPECT_EQ(copied->getFile().getPath(), sound->getFile().getPath());
    EXPECT_EQ(streamOf(*copy->getAt(1)), streamOf(*tape->getAt(1)));
}
