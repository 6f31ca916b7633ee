// KSpeech on espeak-ng: real voices, real word reports, audio rendered to
// a WAV file or played through a clock-keeping fake sink.

#include "kernel/KVariable.h"
#include "kmultimedia/KMediaFeedbackEvent.h"
#include "kmultimedia/KSpeech.h"
#include "kmultimedia/KSpeechSupport.h"
#include "tests/kmultimedia/MediaTestSupport.h"
#include "tests/kmultimedia/SoundTestSupport.h"

#include <glib.h>

using namespace soundtest;

namespace {

struct HeardWord {
    int32_t start;
    int32_t length;
    int32_t audioMs;
    gint64 deliveredUs;
};

class WordLog : public KThing {
public:
    KEventReturn handleEvent(KEvent& event) override
    {
        auto* feedback = dynamic_cast<KMediaFeedbackEvent*>(&event);
        if (!feedback)
            return 0;
        words.push_back({ feedback->getValue(KMediaFeedbackEvent::kWordStart)->getLong(),
                          feedback->getValue(KMediaFeedbackEvent::kWordLength)->getLong(),
                          feedback->getValue(KMediaFeedbackEvent::kElapsedTime)->getLong(), g_get_monotonic_time() });
        return 1;
    }
    std::vector<HeardWord> words;
};

class SpeechEngineTest : public MediaTest {
protected:
    void SetUp() override
    {
        MediaTest::SetUp();
        support = kAdopt(new KSpeechSupport());
        support->setInterfaceLanguage("en");
        manager->setSupport(KMediaManager::SpeechSupport, support.get());
        manager->setUp(KMediaManager::SpeechSupport);
        ASSERT_FALSE(support->getVoices().empty()) << "espeak-ng has no voices";
        log = kAdopt(new WordLog());
    }
    void TearDown() override
    {
        manager->closeMediaSupport();
        support.clear();
        MediaTest::TearDown();
    }

    bool speakToEnd(KSpeech& speech, int limitMs = 30000)
    {
        gint64 end = g_get_monotonic_time() + gint64(limitMs) * 1000;
        while (speech.isPlaying()) {
            if (g_get_monotonic_time() > end)
                return false;
            manager->idle();
            g_usleep(2000);
        }
        return true;
    }

    KSpeechPtr newSpeech()
    {
        KSpeechPtr speech(new KSpeech());
        speech->getMediaFlags().set(KAbstractMedia::WordFeedback);
        speech->addTarget(*log);
        return speech;
    }

    KSpeechSupportPtr support;
    KPtr<WordLog> log;
    TempFolder folder;
};

} // namespace

TEST_F(SpeechEngineTest, VoicesOfTheInterfaceLanguage)
{
    EXPECT_TRUE(KSpeechSupport::hasEngine());
    EXPECT_GT(support->getVoices().size(), 50u);
    ASSERT_FALSE(support->getVoicesFor("en").empty());
    EXPECT_EQ(support->getDefaultVoice(), support->getVoicesFor("en").front());
    EXPECT_FALSE(support->getVoicesFor("it").empty());
    EXPECT_FALSE(support->resolve(KString("Enrico")).identifier.empty());
}

TEST_F(SpeechEngineTest, WordsOfASentenceWithAccentsAHyphenAndANumber)
{
    // "The café sells twenty-one crème brûlées for 42 euros." in the Windows set.
    const char* text = "The caf\xE9 sells twenty-one cr\xE8me br\xFBl\xE9"
                       "es for 42 euros.";
    std::string wav = folder.pathOf("speech.wav");
    KSpeechPtr speech = newSpeech();
    speech->setRenderFile(wav);
    speech->speak(support->getDefaultVoice(), KString(text));
    ASSERT_TRUE(speech->isPlaying());
    ASSERT_TRUE(speakToEnd(*speech));
    speech->unload();

    struct Expected {
        int32_t start;
        int32_t length;
    };
    const Expected all[]
        = { { 0, 3 }, { 4, 4 }, { 9, 5 }, { 15, 10 }, { 26, 5 }, { 32, 7 }, { 40, 3 }, { 44, 2 }, { 47, 5 } };
    ASSERT_EQ(log->words.size(), std::size(all));
    for (size_t i = 0; i < std::size(all); ++i) {
        EXPECT_EQ(log->words[i].start, all[i].start) << i;
        EXPECT_EQ(log->words[i].length, all[i].length) << i;
        if (i > 0) {
            EXPECT_GT(log->words[i].audioMs, log->words[i - 1].audioMs) << i;
        }
    }

    WavSamples audio;
    ASSERT_TRUE(readWav(wav, audio));
    double seconds = double(audio.samples.size()) / audio.channels / audio.rate;
    EXPECT_GT(seconds, 2.0);
    EXPECT_LT(seconds, 8.0);
    EXPECT_LT(log->words.back().audioMs, int32_t(seconds * 1000.0));
    EXPECT_GT(peakOf(audio, 0), 3000);
}

TEST_F(SpeechEngineTest, WordsArriveWhenTheyAreHeardAndVolumeScalesTheAudio)
{
    KSpeechPtr speech = newSpeech();
    gint64 start = g_get_monotonic_time();
    speech->speak(support->getDefaultVoice(), KString("One two three four five."));
    ASSERT_TRUE(speakToEnd(*speech));
    ASSERT_GE(log->words.size(), 5u);
    // Through a sink that keeps time, each word comes no earlier than its
    // audio and not long after.
    for (const HeardWord& word : log->words) {
        double late = double(word.deliveredUs - start) / 1000.0 - word.audioMs;
        EXPECT_GT(late, -5.0) << word.start;
        EXPECT_LT(late, 250.0) << word.start;
    }

    std::string loud = folder.pathOf("loud.wav");
    std::string soft = folder.pathOf("soft.wav");
    for (const auto& [path, volume] : { std::pair { loud, 1.0 }, std::pair { soft, 0.5 } }) {
        KSpeechPtr rendered = newSpeech();
        rendered->setRenderFile(path);
        rendered->setVolume(volume);
        rendered->speak(support->getDefaultVoice(), KString("Hello there."));
        ASSERT_TRUE(speakToEnd(*rendered));
        rendered->unload();
    }
    WavSamples full, half;
    ASSERT_TRUE(readWav(loud, full));
    ASSERT_TRUE(readWav(soft, half));
    EXPECT_NEAR(double(half.samples.size()), double(full.samples.size()), full.samples.size() * 0.01);
    EXPECT_NEAR(peakOf(half, 0), peakOf(full, 0) / 2, peakOf(full, 0) * 0.01);
}

TEST_F(SpeechEngineTest, TwoSpeechesAtOnceAndAStopInTheMiddle)
{
    KSpeechPtr first = newSpeech();
    KSpeechPtr second(new KSpeech());
    first->speak(support->getDefaultVoice(), KString("This is a rather long sentence that will be cut short."));
    second->speak(support->getDefaultVoice(), KString("Short."));
    EXPECT_TRUE(first->isPlaying());
    EXPECT_TRUE(second->isPlaying());
    ASSERT_TRUE(speakToEnd(*second));
    EXPECT_TRUE(first->isPlaying());
    first->stop();
    EXPECT_EQ(first->getStatus(), KAbstractMedia::Loaded);
    size_t heard = log->words.size();
    for (int i = 0; i < 50; ++i) {
        manager->idle();
        g_usleep(2000);
    }
    EXPECT_EQ(log->words.size(), heard);
    // And it speaks again after the stop.
    first->speak(support->getDefaultVoice(), KString("Again."));
    ASSERT_TRUE(speakToEnd(*first));
    EXPECT_GT(log->words.size(), heard);
    first->removeTarget(*log);
}
