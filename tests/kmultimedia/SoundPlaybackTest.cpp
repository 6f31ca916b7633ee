// KSound on the platform's player, over files made here with GStreamer's
// encoders. Output goes to a clock-keeping fake sink or into WAV files.

#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "kmultimedia/KSound.h"
#include "kmultimedia/KSoundSupport.h"
#include "tests/kmultimedia/MediaTestSupport.h"
#include "tests/kmultimedia/SoundTestSupport.h"

#include <glib.h>

#include <fstream>

using namespace soundtest;

namespace {

class SoundPlaybackTest : public MediaTest {
protected:
    void SetUp() override
    {
        MediaTest::SetUp();
        ASSERT_FALSE(folder.path.empty());
        support = kAdopt(new KSoundSupport());
        manager->setSupport(KMediaManager::SoundSupport, support.get());
        manager->setUp(KMediaManager::SoundSupport);
        ASSERT_EQ(support->getEngineFlags(), KSoundSupport::Player);
    }
    void TearDown() override
    {
        manager->closeMediaSupport();
        support.clear();
        MediaTest::TearDown();
    }

    KSoundPtr newSound(const std::string& path)
    {
        KSoundPtr sound(new KSound());
        sound->createFromFile(KFileReference(KPath(KString(path.c_str()), KPath::LinuxPlatform)));
        return sound;
    }

    template<class Condition>
    bool runUntil(Condition done, int limitMs = 20000)
    {
        gint64 end = g_get_monotonic_time() + gint64(limitMs) * 1000;
        while (!done()) {
            if (g_get_monotonic_time() > end)
                return false;
            manager->idle();
            g_usleep(2000);
        }
        return true;
    }

    // Renders the file through the sound's pipeline into a WAV file.
    bool render(const std::string& path, double volume, double balance, WavSamples& out)
    {
        std::string rendered = folder.pathOf("rendered.wav");
        KSoundPtr sound = newSound(path);
        sound->setRenderFile(rendered);
        sound->setVolume(volume);
        sound->setBalance(balance);
        sound->play();
        if (!sound->isPlaying() || !runUntil([&] { return !sound->isPlaying(); }))
            return false;
        sound->unload();
        return readWav(rendered, out);
    }

    TempFolder folder;
    KSoundSupportPtr support;
};

} // namespace

TEST_F(SoundPlaybackTest, EveryFormatLoadsWithItsDuration)
{
    for (const char* extension : { "wav", "au", "mp3", "m4a", "wma" }) {
        std::string error;
        std::string path = makeSound(folder, extension, error);
        ASSERT_FALSE(path.empty()) << extension << ": " << error;
        KSoundPtr sound = newSound(path);
        ASSERT_TRUE(sound->load()) << extension;
        EXPECT_NEAR(sound->getDuration(), 1.0, 0.08) << extension;
        WavSamples wav;
        ASSERT_TRUE(render(path, 1.0, 0.0, wav)) << extension;
        EXPECT_NEAR(double(wav.samples.size()) / wav.channels / wav.rate, 1.0, 0.08) << extension;
        EXPECT_GT(peakOf(wav, 0), 20000) << extension;
    }
}

TEST_F(SoundPlaybackTest, MidiPlaysThroughTheSoundFont)
{
    std::string path = makeMidi(folder, 1.0);
    KSoundPtr sound = newSound(path);
    ASSERT_TRUE(sound->load());
    WavSamples wav;
    ASSERT_TRUE(render(path, 1.0, 0.0, wav));
    double seconds = double(wav.samples.size()) / wav.channels / wav.rate;
    // The note and the tail of its release.
    EXPECT_GE(seconds, 0.9);
    EXPECT_LE(seconds, 3.0);
    EXPECT_GT(peakOf(wav, 0), 100);
}

TEST_F(SoundPlaybackTest, BalanceAndVolumeShapeTheChannels)
{
    std::string error;
    std::string path = makeSound(folder, "wav", error, 1.0, 0.8);
    ASSERT_FALSE(path.empty()) << error;

    WavSamples full;
    ASSERT_TRUE(render(path, 1.0, 0.0, full));
    ASSERT_EQ(full.channels, 2);
    int level = peakOf(full, 0);
    EXPECT_NEAR(level, 0.8 * 32767, 600);
    EXPECT_NEAR(peakOf(full, 1), level, 50);

    WavSamples left;
    ASSERT_TRUE(render(path, 1.0, -1.0, left));
    EXPECT_NEAR(peakOf(left, 0), level, 50);
    EXPECT_LE(peakOf(left, 1), 1);

    WavSamples half;
    ASSERT_TRUE(render(path, 0.5, 0.0, half));
    EXPECT_NEAR(peakOf(half, 0), level / 2, 50);

    WavSamples silent;
    ASSERT_TRUE(render(path, 0.0, 1.0, silent));
    EXPECT_EQ(peakOf(silent, 0), 0);
    EXPECT_EQ(peakOf(silent, 1), 0);
}

TEST_F(SoundPlaybackTest, PlaysInRealTimeToItsEndAndAgain)
{
    std::string error;
    std::string path = makeSound(folder, "wav", error, 0.5);
    ASSERT_FALSE(path.empty()) << error;
    KSoundPtr sound = newSound(path);
    gint64 start = g_get_monotonic_time();
    sound->play();
    ASSERT_TRUE(sound->isPlaying());
    ASSERT_TRUE(runUntil([&] { return !sound->isPlaying(); }));
    double took = double(g_get_monotonic_time() - start) / 1e6;
    // The fake sink keeps time: the sound lasts as long as it should.
    EXPECT_GE(took, 0.45);
    EXPECT_LT(took, 3.0);
    sound->play();
    EXPECT_TRUE(sound->isPlaying());
    sound->pause();
    EXPECT_TRUE(sound->isPaused());
    sound->stop();
    EXPECT_EQ(sound->getStatus(), KAbstractMedia::Loaded);
}

TEST_F(SoundPlaybackTest, BrokenFilesLeaveStatusZeroQuickly)
{
    std::string error;
    std::string good = makeSound(folder, "mp3", error);
    ASSERT_FALSE(good.empty()) << error;
    std::string truncated = folder.pathOf("cut.mp3");
    {
        std::ifstream in(good, std::ios::binary);
        std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        std::ofstream(truncated, std::ios::binary) << bytes.substr(0, 300);
    }
    std::string garbage = folder.pathOf("noise.wav");
    std::ofstream(garbage) << std::string(5000, 'x');
    std::string empty = folder.pathOf("empty.aiff");
    std::ofstream(empty).flush();

    for (const std::string& path : { garbage, empty, folder.pathOf("missing.wav") }) {
        gint64 start = g_get_monotonic_time();
        testing::internal::CaptureStderr();
        KSoundPtr sound = newSound(path);
        sound->play();
        std::string said = testing::internal::GetCapturedStderr();
        EXPECT_EQ(sound->getStatus(), KAbstractMedia::NotLoaded) << path;
        EXPECT_TRUE(sound->isDonePlaying());
        EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
        EXPECT_LT(g_get_monotonic_time() - start, 6 * G_USEC_PER_SEC);
    }
    // A cut file either does not load or ends early.
    KSoundPtr cut = newSound(truncated);
    testing::internal::CaptureStderr();
    cut->play();
    EXPECT_TRUE(runUntil([&] { return !cut->isPlaying(); }));
    testing::internal::GetCapturedStderr();
}

// AIFF headers that promise more than the file holds. One whose "COMM"
// chunk runs past the end never prerolls: the load gives up at its limit,
// leaving status 0 and one line on stderr. What loads ends at once.
TEST_F(SoundPlaybackTest, DamagedAiffHeadersNeitherHangNorPlayOn)
{
    auto big = [](uint32_t value) {
        return std::string { char(value >> 24), char(value >> 16), char(value >> 8), char(value) };
    };
    // 22050 as an 80-bit extended number.
    const std::string rate("\x40\x0D\xAC\x44\x00\x00\x00\x00\x00\x00", 10);
    std::string comm = "COMM" + big(18) + std::string("\0\1", 2) + big(1000000) + std::string("\0\x10", 2) + rate;
    std::string ssnd = "SSND" + big(2000008) + big(0) + big(0);
    std::string longComm
        = "COMM" + big(0x7FFFFFF0) + std::string("\0\1", 2) + big(1000) + std::string("\0\x10", 2) + rate;
    // Which of these GStreamer refuses at once and which it opens and then
    // finds empty depends on its plugins' versions; either way the load
    // never outlasts its limit, a refusal says one line, and nothing plays on.
    struct Damaged {
        const char* name;
        std::string bytes;
    };
    const Damaged files[] = {
        { "header-only.aiff", "FORM" + big(2000000) + "AIFF" + comm + ssnd },
        { "form-only.aiff", "FORM" + big(0x7FFFFFF0) + "AIFF" },
        { "long-comm.aiff", "FORM" + big(0x7FFFFFF0) + "AIFF" + longComm },
    };
    for (const Damaged& file : files) {
        std::string path = folder.pathOf(file.name);
        std::ofstream(path, std::ios::binary) << file.bytes;
        gint64 start = g_get_monotonic_time();
        testing::internal::CaptureStderr();
        KSoundPtr sound = newSound(path);
        sound->play();
        std::string said = testing::internal::GetCapturedStderr();
        EXPECT_LT(g_get_monotonic_time() - start, 6 * G_USEC_PER_SEC) << file.name;
        if (sound->getStatus() == KAbstractMedia::NotLoaded)
            EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << file.name << ": " << said;
        else
            EXPECT_TRUE(runUntil([&] { return !sound->isPlaying(); }, 3000)) << file.name;
    }
}
