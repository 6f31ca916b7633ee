// The sound and speech elements over the fake player and engine: holding
// the tape, passing when they cannot play, reuse of their media, speed.

#include "tests/support/TestSupport.h"
#include "tests/tape/TimedElementTestSupport.h"

#include "kernel/KStringBag.h"
#include "kmultimedia/KSound.h"
#include "kmultimedia/KSpeech.h"
#include "kmultimedia/KSpeechWords.h"
#include "tape/StylusSound.h"
#include "tape/StylusSpeech.h"

#include <algorithm>
#include <cmath>
#include <limits>

using namespace tapetest;
using namespace timedtest;
using mediatest::referenceTo;

namespace {

class SoundSpeechElementTest : public TimedElementTest {
protected:
    StylusSoundPtr makeSound(const std::filesystem::path& file, bool wait = true)
    {
        StylusSoundPtr sound(new StylusSound());
        sound->setFile(referenceTo(file));
        sound->setWaitForEnd(wait);
        return sound;
    }
    int32_t countCalls(const std::string& name) const
    {
        return int32_t(std::count(sounds->calls.begin(), sounds->calls.end(), name));
    }
    int32_t loadedSounds() const
    {
        int32_t count = 0;
        for (int32_t i = 0; i < manager->mediaCount(); ++i)
            count += dynamic_cast<KSound*>(manager->getMediaAt(i)) != nullptr;
        return count;
    }
};

} // namespace

TEST_F(SoundSpeechElementTest, ASoundThatWaitsHoldsTheTapeUntilItsEndAtItsVolume)
{
    StylusSoundPtr sound = makeSound(soundFile("bell.wav"));
    EXPECT_TRUE(sound->getWaitForEnd());
    EXPECT_DOUBLE_EQ(sound->getVolume(), 1.0);
    sound->setVolume(0.4);
    tape->addElement(*sound);
    tape->startPlaying(0);
    tick();
    ASSERT_NE(sound->getSound(), nullptr);
    EXPECT_TRUE(sound->getSound()->isPlaying());
    EXPECT_DOUBLE_EQ(sounds->volume, 0.4);
    EXPECT_EQ(sounds->openedPath, (folder / "bell.wav").string());
    EXPECT_EQ(ticksHeld(*sound, 20), 20);

    KFakeSound::advance(*sounds, 2.0);
    EXPECT_EQ(ticksHeld(*sound), 1);
    // Done: the element let go of its medium.
    EXPECT_EQ(sound->getSound(), nullptr);
    EXPECT_EQ(loadedSounds(), 0);
}

TEST_F(SoundSpeechElementTest, ASoundThatCannotPlayPassesAtOnce)
{
    std::vector<StylusSoundPtr> elements = {
        makeSound(folder / "gone.wav"), // not on disk
        makeSound(soundFile("broken.bad")), // the player cannot decode it
        StylusSoundPtr(new StylusSound()), // no file at all
    };
    for (StylusSoundPtr& element : elements)
        tape->addElement(*element);
    tape->startPlaying(0);
    EXPECT_EQ(playToEnd(), 3);
    for (StylusSoundPtr& element : elements)
        EXPECT_EQ(element->getSound(), nullptr);
    EXPECT_EQ(media.soundOutputChecks, 0);
    EXPECT_EQ(loadedSounds(), 0);
}

TEST_F(SoundSpeechElementTest, SoundsThatDoNotWaitOverlapEachWithItsOwnMedium)
{
    StylusSoundPtr first = makeSound(soundFile("rain.wav"), false);
    StylusSoundPtr second = makeSound(soundFile("wind.wav"), false);
    tape->addElement(*first);
    tape->addElement(*second);
    tape->addElement(*new ProbeElement(StrokeType));
    tape->startPlaying(0);
    tick();
    tick();
    EXPECT_EQ(tape->getPlayIndex(), 2);
    ASSERT_NE(first->getSound(), nullptr);
    ASSERT_NE(second->getSound(), nullptr);
    EXPECT_NE(first->getSound(), second->getSound());
    EXPECT_TRUE(first->getSound()->isPlaying());
    EXPECT_TRUE(second->getSound()->isPlaying());
    EXPECT_EQ(loadedSounds(), 2);
}

TEST_F(SoundSpeechElementTest, PlayingAgainReusesTheMediumFromTheStartAfterStoppingIt)
{
    StylusSoundPtr sound = makeSound(soundFile("song.wav"), false);
    sound->setTape(*tape);
    sound->startPlaying();
    KSoundPtr medium = sound->getSound();
    ASSERT_TRUE(medium);
    KFakeSound::advance(*sounds, 0.5);
    // The tape paused it, as a loop or a pause does.
    medium->pause();
    sounds->calls.clear();
    sound->startPlaying();
    EXPECT_EQ(sound->getSound(), medium.get());
    EXPECT_TRUE(medium->isPlaying());
    EXPECT_DOUBLE_EQ(sounds->position, 0.0);
    EXPECT_EQ(countCalls("open"), 0);
    ASSERT_FALSE(sounds->calls.empty());
    EXPECT_EQ(sounds->calls.back(), "start");

    // Stopping the element stops and closes the medium.
    sound->stopPlaying();
    EXPECT_EQ(sound->getSound(), nullptr);
    EXPECT_FALSE(medium->isLoaded());
    // A new file drops a medium that still plays.
    sound->startPlaying();
    KSoundPtr again = sound->getSound();
    sound->setFile(referenceTo(soundFile("other.wav")));
    EXPECT_EQ(sound->getSound(), nullptr);
    EXPECT_FALSE(again->isPlaying());
}

TEST_F(SoundSpeechElementTest, VolumesAreCutToTheRangeAndNotANumberIsSilence)
{
    StylusSoundPtr sound(new StylusSound());
    StylusSpeechPtr speech(new StylusSpeech());
    const double cases[][2] = { { 0.3, 0.3 },
                                { -1.0, 0.0 },
                                { 7.0, 1.0 },
                                { std::nan(""), 0.0 },
                                { std::numeric_limits<double>::infinity(), 1.0 } };
    for (const auto& [given, kept] : cases) {
        sound->setVolume(given);
        speech->setVolume(given);
        EXPECT_DOUBLE_EQ(sound->getVolume(), kept) << given;
        EXPECT_DOUBLE_EQ(speech->getVolume(), kept) << given;
    }
}

TEST_F(SoundSpeechElementTest, MediaQueriesGoByTheSoundFile)
{
    StylusSoundPtr sound = makeSound(folder / "Media" / "tick.wav");
    EXPECT_TRUE(sound->usesMediaNamed("tick.wav"));
    EXPECT_FALSE(sound->usesMediaNamed("tock.wav"));
    EXPECT_FALSE(StylusSoundPtr(new StylusSound())->usesMediaNamed(""));
    KStringBagPtr names(new KStringBag());
    sound->addMediaName(*names);
    sound->addMediaName(*names);
    ASSERT_EQ(names->getSize(), 1);

    EXPECT_FALSE(sound->replaceMedia(referenceTo(folder / "other.wav"), referenceTo(folder / "new.wav")));
    EXPECT_TRUE(sound->replaceMedia(referenceTo(folder / "Media" / "tick.wav"), referenceTo(folder / "new.wav")));
    EXPECT_TRUE(sound->usesMediaNamed("new.wav"));

    // A missing file is looked for by its name, then the user is asked.
    KDirectory directory = mediatest::folderAt(folder.root);
    EXPECT_TRUE(sound->findMissingMedia(directory, nullptr));
    EXPECT_EQ(media.missingQuestions, 1);
    soundFile("new.wav");
    EXPECT_FALSE(sound->findMissingMedia(directory, nullptr));
    EXPECT_EQ(media.missingQuestions, 1);
}

TEST_F(SoundSpeechElementTest, SpeechSaysItsTextWithItsVoiceAndHoldsTheTapeUntilItEnds)
{
    StylusSpeechPtr speech(new StylusSpeech());
    EXPECT_EQ(speech->getText(), "Hello, I'm talking to you!");
    EXPECT_EQ(speech->getVoice(), speechSupport->getDefaultVoice());
    EXPECT_TRUE(speech->getWaitForEnd());
    speech->setText("Once upon a time");
    speech->setVoice("French (France)");
    speech->setVolume(0.5);
    tape->addElement(*speech);
    tape->startPlaying(0);
    tick();
    ASSERT_EQ(engine.script->requests.size(), 1u);
    EXPECT_EQ(engine.script->requests[0].text, "Once upon a time ");
    EXPECT_EQ(engine.script->requests[0].voice, "roa/fr");
    EXPECT_DOUBLE_EQ(engine.script->volume, 0.5);
    EXPECT_EQ(ticksHeld(*speech, 30), 30);
    engine.script->done = true;
    EXPECT_EQ(ticksHeld(*speech), 1);
    EXPECT_TRUE(media.speechFailures.empty());

    // Without waiting, the tape goes on while it speaks.
    engine.script->done = false;
    tape->stopPlaying();
    speech->setWaitForEnd(false);
    tape->startPlaying(0);
    tick();
    EXPECT_EQ(tape->getPlayingObject(), nullptr);
    EXPECT_TRUE(speech->getSpeech().isPlaying());
    // Playing it again stops what it still says first.
    int32_t cancels = engine.script->cancels;
    speech->startPlaying();
    EXPECT_EQ(engine.script->cancels, cancels + 1);
    EXPECT_EQ(engine.script->requests.size(), 3u);
}

TEST_F(SoundSpeechElementTest, SpeechWithoutAnEngineOrThatCannotStartWarnsAndPasses)
{
    StylusSpeechPtr speech(new StylusSpeech());
    tape->addElement(*speech);
    tape->addElement(*new ProbeElement(StrokeType));

    // The support offers voices but the engine cannot start a speech.
    struct NoPlayer : KSpeechEngine {
        explicit NoPlayer(const std::vector<KSpeechVoiceInfo>& list)
            : list(list)
        {
        }
        const std::vector<KSpeechVoiceInfo>& voices() override { return list; }
        KSpeechNative* createSpeech() override { return nullptr; }
        void shutdown() override { }
        std::vector<KSpeechVoiceInfo> list;
    };
    NoPlayer noPlayer(engine.voiceList);
    KSpeechSupport::setEngine(&noPlayer);
    speech->setVoice("German");
    tape->startPlaying(0);
    EXPECT_EQ(playToEnd(), 2);
    EXPECT_EQ(media.speechFailures, std::vector<std::string>({ "German" }));

    // No engine at all: the host is asked to warn, the element passes.
    manager->closeMediaSupport();
    KFakeSpeechEngine mute;
    mute.voiceList.clear();
    KSpeechSupport::setEngine(&mute);
    tape->startPlaying(0);
    EXPECT_EQ(playToEnd(), 2);
    EXPECT_EQ(media.speechEngineChecks, 1);
    KSpeechSupport::setEngine(&engine);
}

TEST_F(SoundSpeechElementTest, TheSpeedComesFromTheSettingsOrIsTheMediasOwn)
{
    EXPECT_LT(StylusSpeech::speedFromSettings(false, 80.0), 0.0);
    EXPECT_LT(StylusSpeech::speedFromSettings(true, 50.0), 0.0);
    EXPECT_LT(StylusSpeech::speedFromSettings(true, 65535.0), 0.0);
    EXPECT_LT(StylusSpeech::speedFromSettings(true, -1.0), 0.0);
    EXPECT_LT(StylusSpeech::speedFromSettings(true, std::nan("")), 0.0);
    EXPECT_DOUBLE_EQ(StylusSpeech::speedFromSettings(true, 80.0), 0.8);
    EXPECT_DOUBLE_EQ(StylusSpeech::speedFromSettings(true, 0.0), 0.0);
    EXPECT_DOUBLE_EQ(StylusSpeech::speedFromSettings(true, 250.0), 1.0);

    // The speed is set when the element is made and again before speaking.
    media.speed = 0.9;
    StylusSpeechPtr speech(new StylusSpeech());
    EXPECT_DOUBLE_EQ(speech->getSpeech().getSpeed(), 0.9);
    media.speed = 0.2;
    tape->addElement(*speech);
    tape->startPlaying(0);
    tick();
    ASSERT_EQ(engine.script->requests.size(), 1u);
    EXPECT_EQ(engine.script->requests[0].wordsPerMinute, kSpeechWordsPerMinute(0.2));
    tape->stopPlaying();
    media.speed = -1.0;
    tape->startPlaying(0);
    tick();
    ASSERT_EQ(engine.script->requests.size(), 2u);
    EXPECT_EQ(engine.script->requests[1].wordsPerMinute, kSpeechWordsPerMinute(StylusSpeech::kDefaultSpeed));
}
