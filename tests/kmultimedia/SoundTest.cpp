// KSound's state machine and settings over the fake player.

#include "kernel/KError.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "kmultimedia/KSound.h"
#include "kmultimedia/KSoundSupport.h"
#include "kmultimedia/testing/KFakeSound.h"
#include "tests/kmultimedia/MediaTestSupport.h"
#include "tests/support/TestSupport.h"

#include <algorithm>

namespace {

KFileReference referenceTo(const std::string& path)
{
    return KFileReference(KPath(KString(path.c_str()), KPath::LinuxPlatform));
}

class SoundTest : public MediaTest {
protected:
    void SetUp() override
    {
        MediaTest::SetUp();
        script = std::make_shared<KFakeSound::Script>();
        KFakeSound::install(script);
        support = kAdopt(new KSoundSupport());
        manager->setSupport(KMediaManager::SoundSupport, support.get());
        manager->setUp(KMediaManager::SoundSupport);
    }
    void TearDown() override
    {
        manager->closeMediaSupport();
        support.clear();
        KFakeSound::install(nullptr);
        MediaTest::TearDown();
    }

    KSoundPtr newSound(const std::string& path)
    {
        KSoundPtr sound(new KSound());
        sound->createFromFile(referenceTo(path));
        return sound;
    }

    std::shared_ptr<KFakeSound::Script> script;
    KSoundSupportPtr support;
};

} // namespace

TEST_F(SoundTest, PlaysToItsEndThroughTheIdlePass)
{
    KSoundPtr sound = newSound("/sounds/bell.wav");
    sound->play();
    ASSERT_TRUE(sound->isPlaying());
    EXPECT_EQ(script->openedPath, "/sounds/bell.wav");
    EXPECT_TRUE(manager->isIdling());
    EXPECT_DOUBLE_EQ(sound->getDuration(), 2.0);
    manager->idle();
    EXPECT_TRUE(sound->isPlaying());
    KFakeSound::advance(*script, 2.0);
    script->calls.clear();
    manager->idle();
    EXPECT_EQ(sound->getStatus(), KAbstractMedia::Loaded);
    EXPECT_FALSE(manager->isIdling());

    // Ended, it was rewound, and plays again from the beginning.
    sound->play();
    EXPECT_EQ(script->calls, (std::vector<std::string> { "pause", "seek 0", "start" }));
    EXPECT_FALSE(sound->isDonePlaying());
}

TEST_F(SoundTest, StopRewindsPauseKeepsThePlaceAndRestartKeepsPlaying)
{
    KSoundPtr sound = newSound("/sounds/bell.wav");
    sound->play();
    KFakeSound::advance(*script, 0.5);
    sound->pause();
    EXPECT_TRUE(sound->isPaused());
    EXPECT_DOUBLE_EQ(sound->getElapsed(), 0.5);
    sound->resume();
    EXPECT_TRUE(sound->isPlaying());

    sound->restart();
    EXPECT_TRUE(sound->isPlaying());
    EXPECT_TRUE(script->playing);
    EXPECT_DOUBLE_EQ(sound->getElapsed(), 0.0);

    sound->setPosition(0.25);
    EXPECT_DOUBLE_EQ(sound->getElapsed(), 0.5);

    // A stopped (also a paused) sound is loaded, at its start.
    sound->pause();
    sound->stop();
    EXPECT_EQ(sound->getStatus(), KAbstractMedia::Loaded);
    EXPECT_DOUBLE_EQ(sound->getElapsed(), 0.0);
    EXPECT_FALSE(script->playing);
}

TEST_F(SoundTest, ALoopingSoundStartsOverInThePassThatFindsItDone)
{
    KSoundPtr sound = newSound("/sounds/bell.wav");
    sound->setLooping(true);
    sound->play();
    KFakeSound::advance(*script, 3.0);
    manager->idle();
    EXPECT_TRUE(sound->isPlaying());
    EXPECT_DOUBLE_EQ(sound->getElapsed(), 0.0);
}

TEST_F(SoundTest, VolumeAndBalanceAreClampedAndReachThePlayerOnLoad)
{
    KSoundPtr sound = newSound("/sounds/bell.wav");
    sound->setVolume(1.7);
    sound->setBalance(-3.0);
    EXPECT_DOUBLE_EQ(sound->getVolume(), 1.0);
    EXPECT_DOUBLE_EQ(sound->getBalance(), -1.0);
    sound->setVolume(0.5);
    ASSERT_TRUE(sound->load());
    EXPECT_DOUBLE_EQ(script->volume, 0.5);
    EXPECT_DOUBLE_EQ(script->balance, -1.0);
    sound->setVolume(0.0);
    EXPECT_DOUBLE_EQ(script->volume, 0.0);

    // The decibel path of sounds in memory: 0 is a whisper, not silence.
    EXPECT_EQ(KSound::volumeToHundredthsOfDecibel(0.0), -4000);
    EXPECT_EQ(KSound::volumeToHundredthsOfDecibel(0.5), -2000);
    EXPECT_EQ(KSound::volumeToHundredthsOfDecibel(1.0), 0);
    EXPECT_EQ(KSound::volumeToHundredthsOfDecibel(-2.0), -4000);
}

TEST_F(SoundTest, FilesThatCannotBeOpenedLeaveStatusZero)
{
    testing::internal::CaptureStderr();
    KSoundPtr sound = newSound("/sounds/broken.bad");
    EXPECT_FALSE(sound->load());
    sound->play();
    std::string said = testing::internal::GetCapturedStderr();
    EXPECT_EQ(sound->getStatus(), KAbstractMedia::NotLoaded);
    EXPECT_TRUE(sound->isDonePlaying());
    EXPECT_DOUBLE_EQ(sound->getDuration(), 0.0);
    EXPECT_NE(said.find("broken.bad"), std::string::npos) << said;
    EXPECT_FALSE(manager->hasMedia(*sound));

    // A sound with no name never reaches the player.
    KSoundPtr nameless(new KSound());
    script->calls.clear();
    nameless->play();
    EXPECT_EQ(nameless->getStatus(), KAbstractMedia::NotLoaded);
    EXPECT_TRUE(script->calls.empty());
}

TEST_F(SoundTest, APlayerThatFailsWhilePlayingEndsTheSoundWithOneLine)
{
    KSoundPtr sound = newSound("/sounds/bell.wav");
    sound->play();
    script->failWhilePlaying = true;
    testing::internal::CaptureStderr();
    manager->idle();
    manager->idle();
    std::string said = testing::internal::GetCapturedStderr();
    EXPECT_EQ(sound->getStatus(), KAbstractMedia::Loaded);
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
}

TEST_F(SoundTest, AssignmentTakesTheSourceAndRefusesALoadedTarget)
{
    KSoundPtr source = newSound("/sounds/bell.wav");
    source->setVolume(0.3);
    KSoundPtr target(new KSound());
    *target = *source;
    EXPECT_EQ(target->getFile().getPath().getNativeText(), KString("/sounds/bell.wav"));
    EXPECT_DOUBLE_EQ(target->getVolume(), 0.3);
    EXPECT_EQ(target->getStatus(), KAbstractMedia::NotLoaded);

    ASSERT_TRUE(target->load());
    KSoundPtr other = newSound("/sounds/drum.wav");
    {
        ErrorRecorder errors;
        *target = *other;
        EXPECT_EQ(errors.lastCode(), KError::ObjectInUse);
    }
    EXPECT_EQ(target->getFile().getPath().getNativeText(), KString("/sounds/bell.wav"));
}

TEST_F(SoundTest, AResourceSoundIsNotStreamedFromAFile)
{
    KSoundPtr sound(new KSound());
    sound->createFromResource(4711);
    EXPECT_EQ(sound->getStreamingMode(), KMediaInMemory);
    // No such resource: nothing plays, one line says so.
    testing::internal::CaptureStderr();
    sound->play();
    std::string said = testing::internal::GetCapturedStderr();
    EXPECT_EQ(sound->getStatus(), KAbstractMedia::NotLoaded);
    EXPECT_NE(said.find("4711"), std::string::npos);

    // Forced back to streaming, a resource id is an error.
    sound->setStreamingMode(KMediaStreamFromFile);
    ErrorRecorder errors;
    EXPECT_FALSE(sound->load());
    EXPECT_EQ(errors.lastCode(), KError::UnsupportedStreamingMode);
}

TEST_F(SoundTest, SupportOffersTheSoundTypes)
{
    EXPECT_EQ(support->getEngineFlags(), KSoundSupport::Player);
    EXPECT_EQ(KSoundSupport::getSoundExtensions().size(), 8u);
    EXPECT_TRUE(KSoundSupport::isSoundExtension("mid"));
    EXPECT_TRUE(KSoundSupport::isSoundExtension("AU"));
    EXPECT_FALSE(KSoundSupport::isSoundExtension("MP4"));
    manager->closeMediaSupport();
    // Without an open support nothing loads.
    KSoundPtr sound = newSound("/sounds/bell.wav");
    EXPECT_FALSE(sound->load());
}
