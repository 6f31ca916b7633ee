// The pause and the wait: how long they hold the tape, the wait's phases
// with keys and the mouse, its marks and the cursor.

#include "tests/support/TestSupport.h"
#include "tests/tape/TimedElementTestSupport.h"

#include "kmultimedia/KSound.h"
#include "kmultimedia/KSpeech.h"
#include "tape/StylusPause.h"
#include "tape/StylusSound.h"
#include "tape/WaitObject.h"
#include "windowing/KTimerManager.h"

using namespace tapetest;
using namespace timedtest;

namespace {

using Phase = WaitObject::Phase;

class PauseWaitTest : public TimedElementTest {
protected:
    // A wait alone on the tape, started by the first tick.
    void TearDown() override
    {
        background.clear();
        TimedElementTest::TearDown();
    }
    // A wait on a fresh tape, started by the first tick.
    WaitObjectPtr startWait(bool sounds, bool speech, bool user)
    {
        tape->stopPlaying();
        earlier.push_back(tape);
        tape = makeTape(&page);
        WaitObjectPtr wait(new WaitObject());
        wait->setWaitForSounds(sounds);
        wait->setWaitForSpeech(speech);
        wait->setWaitForUser(user);
        tape->addElement(*wait);
        tape->addElement(*new ProbeElement(StrokeType));
        tape->startPlaying(0);
        tick();
        return wait;
    }
    // A sound element that plays under the wait without holding the tape.
    void startBackgroundSound()
    {
        StylusSoundPtr sound(new StylusSound());
        sound->setFile(mediatest::referenceTo(soundFile("under.wav")));
        sound->setWaitForEnd(false);
        sound->setTape(*tape);
        sound->startPlaying();
        background = sound;
    }
    StylusSoundPtr background;
    std::vector<TapePtr> earlier;
};

} // namespace

TEST_F(PauseWaitTest, APauseHoldsForItsTimeAndEvenZeroCostsATick)
{
    StylusPausePtr pause(new StylusPause());
    EXPECT_EQ(pause->getDuration(), 2000);
    tape->addElement(*pause);
    tape->startPlaying(0);
    tick();
    ASSERT_EQ(tape->getPlayingObject(), pause.get());
    // 2000 ms at 20 ms a tick: released on the hundredth tick after the start.
    EXPECT_EQ(ticksHeld(*pause), 100);

    for (int32_t duration : { 0, -5, 1, 20, 21 }) {
        tape->stopPlaying();
        pause->setDuration(duration);
        tape->startPlaying(0);
        tick();
        int32_t expected = duration <= 20 ? 1 : 2;
        EXPECT_EQ(ticksHeld(*pause), expected) << duration;
    }
    EXPECT_EQ(pause->getDuration(), 21);
    pause->setDuration(-1);
    EXPECT_EQ(pause->getDuration(), 0);

    // With the timer manager firing both the play timer and the pause's
    // own, the pause ends on the tick at or just after its time.
    tape->stopPlaying();
    pause->setDuration(100);
    tape->startPlaying(0);
    uint32_t started = 0;
    uint32_t released = 0;
    for (int32_t turn = 0; turn < 100 && released == 0; ++turn) {
        layer.advance(5);
        KTimerManager::get().idle();
        if (started == 0 && tape->getPlayingObject() == pause.get())
            started = layer.now();
        else if (started != 0 && tape->getPlayingObject() != pause.get())
            released = layer.now();
    }
    ASSERT_NE(started, 0u);
    EXPECT_GE(released - started, 100u);
    EXPECT_LE(released - started, 120u);
}

TEST_F(PauseWaitTest, AWaitWithNothingToWaitForEndsOnItsFirstTick)
{
    WaitObjectPtr wait = startWait(false, false, false);
    EXPECT_FALSE(wait->waitsForAnything());
    EXPECT_EQ(wait->getPhase(), Phase::Nothing);
    EXPECT_EQ(ticksHeld(*wait), 1);
    EXPECT_TRUE(media.waitMarks.empty());
    EXPECT_TRUE(media.cursorChanges.empty());
}

TEST_F(PauseWaitTest, AKeyAnswersAWaitForTheUserButNotTheStopKeysOrRepeats)
{
    media.cursor = false;
    WaitObjectPtr wait = startWait(false, false, true);
    EXPECT_EQ(wait->getPhase(), Phase::User);
    EXPECT_TRUE(wait->getCursorWasVisible() == false);
    EXPECT_TRUE(media.cursor);
    EXPECT_EQ(media.waitMarks, std::vector<bool>({ true }));

    EXPECT_EQ(tape->handleKeyDown(*key(KKeyEvent::Escape)), 0);
    EXPECT_EQ(tape->handleKeyDown(*key('.', 2)), 0);
    EXPECT_EQ(tape->handleKeyDown(*key('a', 0, KKeyEvent::KeyRepeat)), 0);
    EXPECT_EQ(wait->getPhase(), Phase::User);
    EXPECT_EQ(ticksHeld(*wait, 50), 50);

    // A full stop without Control is an answer like any other key.
    EXPECT_EQ(tape->handleKeyDown(*key('.')), 1);
    EXPECT_EQ(wait->getPhase(), Phase::Answered);
    // The answer ends the wait at once: the next tick is the next element's.
    EXPECT_NE(tape->getPlayingObject(), wait.get());
    EXPECT_EQ(ticksHeld(*wait), 0);
    EXPECT_EQ(media.waitMarks, std::vector<bool>({ true, false }));
    // The cursor goes back to how the wait found it.
    EXPECT_FALSE(media.cursor);
    EXPECT_EQ(media.cursorReleases, std::vector<bool>({ false }));
    // Once over, the wait takes no more keys.
    EXPECT_EQ(wait->handleKeyDown(*key('a')), 0);
}

TEST_F(PauseWaitTest, AClickCountsWhenTheButtonGoesUpAndOnlyAPressMadeWhileWaiting)
{
    WaitObjectPtr wait = startWait(false, false, true);
    // The release of a press that began before the wait answers nothing.
    EXPECT_EQ(tape->handleMouseUp(*mouse(KMouseEvent::Up)), 0);
    EXPECT_EQ(wait->getPhase(), Phase::User);

    EXPECT_EQ(tape->handleMouseDown(*mouse(KMouseEvent::Down)), 4);
    EXPECT_EQ(wait->getPhase(), Phase::ButtonDown);
    // While the button is down the tape still stands, and keys do nothing.
    EXPECT_EQ(tape->handleKeyDown(*key('a')), 0);
    EXPECT_EQ(ticksHeld(*wait, 10), 10);

    EXPECT_EQ(tape->handleMouseUp(*mouse(KMouseEvent::Up)), 0);
    EXPECT_EQ(wait->getPhase(), Phase::Answered);
    EXPECT_EQ(ticksHeld(*wait), 0);
    EXPECT_EQ(tape->getPlayIndex(), 1);
    // A press after the wait is not the wait's.
    EXPECT_EQ(wait->handleMouseDown(*mouse(KMouseEvent::Down)), 0);
}

TEST_F(PauseWaitTest, WithoutVisualWarningNoMarksAndStoppingRestoresTheCursor)
{
    WaitObjectPtr wait(new WaitObject());
    wait->setVisualWarning(false);
    media.cursor = false;
    tape->addElement(*wait);
    tape->startPlaying(0);
    tick();
    EXPECT_EQ(wait->getPhase(), Phase::User);
    EXPECT_TRUE(media.waitMarks.empty());
    EXPECT_TRUE(media.cursor);
    tape->stopPlaying();
    EXPECT_FALSE(media.cursor);
    EXPECT_EQ(tape->getPlayingObject(), nullptr);
}

TEST_F(PauseWaitTest, APauseDropsTheWaitAndResumingShowsItsMarksAgain)
{
    WaitObjectPtr wait = startWait(false, false, true);
    tape->pausePlaying();
    EXPECT_EQ(tape->handleMouseDown(*mouse(KMouseEvent::Down)), 0);
    tape->resumePlaying();
    tick();
    EXPECT_EQ(tape->getPlayingObject(), wait.get());
    EXPECT_EQ(media.waitMarks, std::vector<bool>({ true, false, true }));
    EXPECT_EQ(tape->handleKeyDown(*key(' ')), 1);
    EXPECT_EQ(ticksHeld(*wait), 0);
    EXPECT_FALSE(media.marksOn);

    // A wait that dies with its marks on takes them away.
    WaitObjectPtr other(new WaitObject());
    other->setTape(*tape);
    other->startPlaying();
    EXPECT_TRUE(media.marksOn);
    other->clearTape();
    other.clear();
    EXPECT_FALSE(media.marksOn);
}

TEST_F(PauseWaitTest, AWaitForSoundsHoldsUntilTheyEndThenWaitsForTheUserAndStopsThem)
{
    startBackgroundSound();
    KSound* sound = background->getSound();
    ASSERT_NE(sound, nullptr);
    ASSERT_TRUE(sound->isPlaying());
    WaitObjectPtr wait = startWait(true, false, true);
    EXPECT_EQ(wait->getPhase(), Phase::Sounds);
    EXPECT_TRUE(media.waitMarks.empty());
    // A key while the sounds play is not yet an answer.
    EXPECT_EQ(tape->handleKeyDown(*key('a')), 0);
    tick();
    EXPECT_EQ(wait->getPhase(), Phase::Sounds);

    // The sound comes to its end: the wait turns to the user.
    KFakeSound::advance(*sounds, 5.0);
    tick();
    EXPECT_EQ(wait->getPhase(), Phase::User);
    EXPECT_EQ(media.waitMarks, std::vector<bool>({ true }));
    EXPECT_EQ(tape->handleKeyDown(*key('a')), 1);
    tick();
    EXPECT_EQ(tape->getPlayingObject(), nullptr);
}

TEST_F(PauseWaitTest, AWaitForSoundsAndSpeechEndsWhenBothAreSilentAndStopsWhatItShould)
{
    // A sound stopped by the media manager at its end does not count as
    // playing, though its position went back to the start.
    startBackgroundSound();
    KSoundPtr sound = background->getSound();
    sound->stop();
    EXPECT_FALSE(sound->isDonePlaying());

    KSpeechPtr speech(new KSpeech());
    speech->setText("Wait for me");
    speech->play();
    ASSERT_TRUE(speech->isPlaying());

    WaitObjectPtr wait = startWait(true, true, false);
    wait->setStopSpeech(false);
    tick();
    EXPECT_EQ(wait->getPhase(), Phase::Speech);
    tick();
    EXPECT_EQ(tape->getPlayingObject(), wait.get());
    engine.script->done = true;
    tick();
    EXPECT_EQ(tape->getPlayingObject(), nullptr);
    EXPECT_EQ(engine.script->cancels, 0);

    // The sound played on while it waited for the user: stopped at the end.
    sound->play();
    WaitObjectPtr user = startWait(false, false, true);
    (void)user;
    tape->handleKeyDown(*key('x'));
    tick();
    EXPECT_FALSE(sound->isPlaying());
}
