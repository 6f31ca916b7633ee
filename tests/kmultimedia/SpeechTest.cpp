// KSpeech and KSpeechSupport over the fake engine: voices and aliases,
// speed, the length limit, and the cleaning and timing of word events.

#include "kernel/KVariable.h"
#include "kmultimedia/KMediaFeedbackEvent.h"
#include "kmultimedia/KSpeech.h"
#include "kmultimedia/KSpeechSupport.h"
#include "kmultimedia/KSpeechWords.h"
#include "kmultimedia/testing/KFakeSpeech.h"
#include "tests/kmultimedia/SpeechTestSupport.h"

namespace {

class SpeechTest : public speechtest::SpeechMediaTest { };

using speechtest::WordCatcher;

std::vector<std::pair<int32_t, int32_t>> cleaned(const char* text, std::vector<int32_t> positions)
{
    KSpeechWordCleaner cleaner((KString(text)));
    std::vector<std::pair<int32_t, int32_t>> words;
    for (int32_t position : positions) {
        KSpeechWord word;
        if (cleaner.take(position, 0, word))
            words.emplace_back(word.start, word.length);
    }
    return words;
}

using Words = std::vector<std::pair<int32_t, int32_t>>;

} // namespace

TEST(SpeechWordsTest, CleaningKeepsWholeWordsAndDropsTheRest)
{
    // Positions are 1-based; lengths come from the text, closing marks out.
    EXPECT_EQ(cleaned("The cat sat.", { 1, 5, 9 }), (Words { { 0, 3 }, { 4, 3 }, { 8, 3 } }));
    // A hyphenated word and a number are reported in parts: one word each.
    EXPECT_EQ(cleaned("a well-known 1,234 cats", { 1, 3, 8, 14, 14, 16, 20 }),
              (Words { { 0, 1 }, { 2, 10 }, { 13, 5 }, { 19, 4 } }));
    // Backwards, repeated, on a blank, past the end, or before the text.
    EXPECT_EQ(cleaned("one two", { 5, 1, 5, 4, 40, 0 }), (Words { { 4, 3 } }));
    // The last word runs to the end; quotes and brackets close a word.
    EXPECT_EQ(cleaned("say \"hello\" (twice)!", { 6, 14 }), (Words { { 5, 5 }, { 13, 5 } }));
    // A word of marks only has no length of its own and is dropped.
    EXPECT_EQ(cleaned("... end", { 1, 5 }), (Words { { 4, 3 } }));
    EXPECT_EQ(KSpeechWordCleaner::wordLengthAt(KString("x"), 0), 1);
}

TEST(SpeechWordsTest, SpeedMapsOntoWordsPerMinute)
{
    EXPECT_EQ(kSpeechWordsPerMinute(0.0), 80);
    EXPECT_EQ(kSpeechWordsPerMinute(0.25), 128);
    EXPECT_EQ(kSpeechWordsPerMinute(0.5), 175);
    EXPECT_EQ(kSpeechWordsPerMinute(0.75), 313);
    EXPECT_EQ(kSpeechWordsPerMinute(1.0), 450);
    EXPECT_EQ(kSpeechWordsPerMinute(7.0), 450);
}

TEST_F(SpeechTest, VoicesAreSortedWindowsNamesAndTheDefaultFollowsTheInterface)
{
    const std::vector<KString>& voices = support->getVoices();
    ASSERT_EQ(voices.size(), 6u);
    EXPECT_EQ(voices.front(), KString("English (America)"));
    // The Greek name does not fit the Windows set: its identifier stands in.
    EXPECT_TRUE(support->hasVoice(KString("grk/el")));
    EXPECT_EQ(support->getDefaultVoice(), KString("English (Great Britain)"));
    support->setInterfaceLanguage("fr");
    EXPECT_EQ(support->getDefaultVoice(), KString("French (France)"));
    support->setInterfaceLanguage("xx");
    EXPECT_EQ(support->getDefaultVoice(), KString("English (Great Britain)"));
    EXPECT_TRUE(KSpeechSupport::hasEngine());
    KSpeechPtr speech(new KSpeech());
    EXPECT_EQ(speech->getVoiceName(), KString("English (Great Britain)"));
}

TEST_F(SpeechTest, StoredNamesMapThroughTheAliases)
{
    for (const char* name : { "", "Default", "Mike", "Fred", "MyVoice Male", "Nobody" }) {
        KSpeechSupport::Choice choice = support->resolve(KString(name));
        EXPECT_EQ(choice.identifier, "gmw/en") << name;
        EXPECT_FALSE(choice.female) << name;
    }
    KSpeechSupport::Choice female = support->resolve(KString("MyVoice Female"));
    EXPECT_EQ(female.identifier, "gmw/en");
    EXPECT_TRUE(female.female);
    EXPECT_EQ(support->resolve(KString("Enrico")).identifier, "roa/it");
    EXPECT_EQ(support->resolve(KString("German")).identifier, "gmw/de");

    // An unknown name speaks with the default voice and stays the speech's.
    KSpeechPtr speech(new KSpeech());
    speech->speak(KString("Old Engine Voice"), KString("Hello"));
    ASSERT_TRUE(speech->isPlaying());
    EXPECT_EQ(speech->getVoiceName(), KString("Old Engine Voice"));
    EXPECT_EQ(script().requests.back().voice, "gmw/en");
}

TEST_F(SpeechTest, SpeakingSendsPlainTextCutAtTheLimitWithTheSpeed)
{
    KSpeechPtr speech(new KSpeech());
    speech->setSpeed(1.0);
    speech->speak(KString("German"), KString("Gr\xFC\xDF"
                                             "e <b> [[a]]"));
    ASSERT_EQ(script().requests.size(), 1u);
    EXPECT_EQ(script().requests[0].text, "Gr\xC3\xBC\xC3\x9F"
                                         "e <b> [[a]]");
    EXPECT_EQ(script().requests[0].wordsPerMinute, 450);
    EXPECT_DOUBLE_EQ(speech->getSpeed(), 1.0);
    // A second play while speaking does nothing.
    speech->play();
    EXPECT_EQ(script().requests.size(), 1u);

    speech->speak(KString("German"), KString(std::string(12000, 'a').c_str()));
    ASSERT_EQ(script().requests.size(), 2u);
    EXPECT_EQ(script().requests[1].text.size(), size_t(KSpeech::kMaximumLength));

    // Empty text does nothing.
    speech->speak(KString("German"), KString(""));
    EXPECT_EQ(script().requests.size(), 2u);
    EXPECT_FALSE(speech->isPlaying());
}

TEST_F(SpeechTest, WordsAreToldWhenPlaybackReachesThem)
{
    script().words = { { 1, 0 }, { 5, 400 }, { 10, 400 }, { 9, 900 }, { 16, 1300 } };
    KPtr<WordCatcher> catcher(new WordCatcher());
    KSpeechPtr speech(new KSpeech());
    speech->getMediaFlags().set(KAbstractMedia::WordFeedback);
    speech->addTarget(*catcher);
    speech->speak(KString(""), KString("Big twenty-one dogs"));
    manager->idle();
    EXPECT_EQ(catcher->words, (Words { { 0, 3 } }));
    EXPECT_EQ(speech->getWordStart(), 0);
    script().positionMs = 399;
    manager->idle();
    EXPECT_EQ(catcher->words.size(), 1u);
    script().positionMs = 400;
    manager->idle();
    // The second half of "twenty-one" and a report going back are dropped.
    EXPECT_EQ(catcher->words, (Words { { 0, 3 }, { 4, 10 } }));
    script().positionMs = 1000;
    manager->idle();
    EXPECT_EQ(catcher->words.size(), 2u);
    EXPECT_TRUE(speech->isPlaying());
    // At the end of the audio what is left is told, and the speech ends.
    script().done = true;
    manager->idle();
    EXPECT_EQ(catcher->words, (Words { { 0, 3 }, { 4, 10 }, { 15, 4 } }));
    EXPECT_EQ(speech->getStatus(), KAbstractMedia::Loaded);
    EXPECT_EQ(speech->getWordStart(), -1);
    EXPECT_EQ(speech->getWordLength(), -1);
    speech->removeTarget(*catcher);
}

TEST_F(SpeechTest, WithoutTheFeedbackFlagOnlyTheFieldsMove)
{
    script().words = { { 5, 0 } };
    KPtr<WordCatcher> catcher(new WordCatcher());
    KSpeechPtr speech(new KSpeech());
    speech->addTarget(*catcher);
    speech->speak(KString(""), KString("Big dogs"));
    manager->idle();
    EXPECT_TRUE(catcher->words.empty());
    EXPECT_EQ(speech->getWordStart(), 4);
    EXPECT_EQ(speech->getWordLength(), 4);
    speech->removeTarget(*catcher);
}

TEST_F(SpeechTest, PauseResumeStopAndVoiceChanges)
{
    KSpeechPtr speech(new KSpeech());
    speech->setVolume(0.4);
    speech->speak(KString(""), KString("Hello there"));
    EXPECT_DOUBLE_EQ(script().volume, 0.4);
    speech->pause();
    EXPECT_TRUE(speech->isPaused());
    EXPECT_TRUE(script().paused);
    speech->resume();
    EXPECT_TRUE(speech->isPlaying());
    speech->stop();
    EXPECT_EQ(speech->getStatus(), KAbstractMedia::Loaded);
    EXPECT_EQ(script().cancels, 1);

    // A new voice unloads; the next play loads again.
    speech->setVoice(KString("Italian"));
    EXPECT_EQ(speech->getStatus(), KAbstractMedia::NotLoaded);
    speech->play();
    EXPECT_TRUE(speech->isPlaying());
    EXPECT_EQ(script().requests.back().voice, "roa/it");
    speech->restart();
    EXPECT_TRUE(speech->isPlaying());
    EXPECT_EQ(script().requests.size(), 3u);

    speech->clear();
    EXPECT_EQ(speech->getStatus(), KAbstractMedia::NotLoaded);
    EXPECT_EQ(speech->getText().getLength(), 0);
    EXPECT_EQ(speech->getVoiceName().getLength(), 0);
}

TEST_F(SpeechTest, WithoutVoicesNothingSpeaks)
{
    manager->closeMediaSupport();
    EXPECT_EQ(engine.shutdowns, 1);
    engine.voiceList.clear();
    support->open();
    EXPECT_TRUE(support->getVoices().empty());
    EXPECT_EQ(support->getDefaultVoice().getLength(), 0);
    EXPECT_FALSE(KSpeechSupport::hasEngine());
    KSpeechPtr speech(new KSpeech());
    speech->speak(KString(""), KString("Hello"));
    EXPECT_EQ(speech->getStatus(), KAbstractMedia::NotLoaded);
    EXPECT_TRUE(speech->isDonePlaying());
    EXPECT_TRUE(script().requests.empty());
}
