// Rewriting a text through the speech exceptions, mapping the engine's words
// back onto the text as given, and KExtendedSpeech over the fake engine.

#include "kernel/KErrorHandler.h"
#include "kernel/KVariable.h"
#include "kmultimedia/KExtendedSpeech.h"
#include "kmultimedia/KMediaFeedbackEvent.h"
#include "kmultimedia/KSpeechExceptionHandler.h"
#include "kmultimedia/KSpeechRewriter.h"
#include "kmultimedia/KSpeechSupport.h"
#include "kmultimedia/testing/KFakeSpeech.h"
#include "tests/kernel/FileTestSupport.h"
#include "tests/kmultimedia/SpeechTestSupport.h"

#include <memory>

namespace {

using Map = std::vector<int32_t>;
using Word = std::pair<int32_t, int32_t>;

// A dictionary without a file of its own; it is the current handler while
// it lives.
class Dictionary {
public:
    explicit Dictionary(std::initializer_list<std::pair<const char*, const char*>> entries)
        : handler(new KSpeechExceptionHandler(KFileReference(folder.pathOf("none/KSpeechExceptions.DAT"))))
    {
        for (const auto& [written, spoken] : entries)
            handler->add(KString(written), KString(spoken));
    }
    KSpeechExceptionHandler& operator*() { return *handler; }
    KSpeechExceptionHandler* get() { return handler.get(); }

private:
    filetest::TempFolder folder;
    KSpeechExceptionHandlerPtr handler;
};

std::string spokenOf(const KSpeechRewrite& rewrite) { return rewrite.spoken.c_str(); }

Word mapped(const Map& map, int32_t start, int32_t length)
{
    Word word { -9, -9 };
    if (!KSpeechRewriter::mapWord(map, start, length, word.first, word.second))
        return { -1, -1 };
    return word;
}

class RewriterTest : public testing::Test {
protected:
    void SetUp() override
    {
        KErrorHandler::loadKernelErrors();
        kRegisterMultimediaClasses();
    }
};

} // namespace

TEST_F(RewriterTest, AnExceptionReplacesTheWordAndTheMapLeadsBackToIt)
{
    Dictionary dictionary({ { "Dr", "Doctor" } });
    KSpeechRewrite rewrite = KSpeechRewriter(dictionary.get()).rewrite(KString("Dr. Who"));
    EXPECT_EQ(spokenOf(rewrite), "Doctor. Who ");
    // "Dr. " became "Doctor. ", eight characters on four; "Who" maps one on
    // one and the closing space the engine gets stands for its last letter.
    EXPECT_EQ(rewrite.positionMap, (Map { 0, 0, 1, 1, 2, 2, 3, 3, 4, 5, 6, 6 }));
    EXPECT_EQ(mapped(rewrite.positionMap, 0, 6), (Word { 0, 3 })) << "Doctor lights Dr.";
    EXPECT_EQ(mapped(rewrite.positionMap, 8, 3), (Word { 4, 3 })) << "the whole last word lights";

    // Without a dictionary the text is spaced and mapped the same way.
    KSpeechRewrite plain = KSpeechRewriter(nullptr).rewrite(KString("Dr. Who"));
    EXPECT_EQ(spokenOf(plain), "Dr. Who ");
    EXPECT_EQ(plain.positionMap, (Map { 0, 1, 2, 3, 4, 5, 6, 6 }));
}

TEST_F(RewriterTest, ClosingMarksAreHeldBackFromTheLookUp)
{
    Dictionary dictionary(
        { { "Dr", "Doctor" }, { "e.g.", "for example" }, { "e.g", "wrong" }, { "Hi,", "Hello" }, { "ok", "okay" } });
    KSpeechRewriter rewriter(dictionary.get());
    // One period is cut and put back after the replacement.
    KSpeechRewrite alone = rewriter.rewrite(KString("Dr."));
    EXPECT_EQ(spokenOf(alone), "Doctor. ");
    EXPECT_EQ(alone.positionMap, (Map { 0, 0, 0, 1, 1, 2, 2, 2 }));
    // Two periods: the word is looked up whole.
    EXPECT_EQ(spokenOf(rewriter.rewrite(KString("e.g. this"))), "for example this ");
    // Two commas: only the last is held back.
    EXPECT_EQ(spokenOf(rewriter.rewrite(KString("Hi,, there"))), "Hello, there ");
    // Each mark of the set, and case ignored when no exact form exists.
    EXPECT_EQ(spokenOf(rewriter.rewrite(KString("ok: OK; ok! Ok? ok"))), "okay: okay; okay! okay? okay ");
    // A mark alone is a word of nothing and the mark.
    EXPECT_EQ(spokenOf(rewriter.rewrite(KString("ok , ok"))), "okay , okay ");
}

TEST_F(RewriterTest, BlanksEndWordsAndEachWordIsFollowedByOneSpace)
{
    KSpeechRewriter rewriter(nullptr);
    // Two spaces make an empty word, which finds nothing: a second space.
    KSpeechRewrite twoSpaces = rewriter.rewrite(KString("a  b"));
    EXPECT_EQ(spokenOf(twoSpaces), "a  b ");
    EXPECT_EQ(twoSpaces.positionMap, (Map { 0, 1, 2, 3, 3 }));
    // A closing space leaves no word behind it.
    KSpeechRewrite trailing = rewriter.rewrite(KString("a b "));
    EXPECT_EQ(spokenOf(trailing), "a b ");
    EXPECT_EQ(trailing.positionMap, (Map { 0, 1, 2, 3 }));
    // One word ends at the last character and gets its space.
    KSpeechRewrite one = rewriter.rewrite(KString("Hello"));
    EXPECT_EQ(spokenOf(one), "Hello ");
    EXPECT_EQ(one.positionMap, (Map { 0, 1, 2, 3, 4, 4 }));
    // Tabs and line ends separate words as spaces do.
    Dictionary dictionary({ { "Dr", "Doctor" } });
    KSpeechRewrite lines = KSpeechRewriter(dictionary.get()).rewrite(KString("Who\r\nDr.\tDr"));
    EXPECT_EQ(spokenOf(lines), "Who  Doctor. Doctor ");
    EXPECT_EQ(lines.positionMap.size(), size_t(lines.spoken.getLength()));
    EXPECT_EQ(mapped(lines.positionMap, 13, 6), (Word { 9, 2 }));
    // Nothing in, nothing out.
    KSpeechRewrite empty = rewriter.rewrite(KString(""));
    EXPECT_TRUE(empty.spoken.isEmpty());
    EXPECT_TRUE(empty.positionMap.empty());
}

TEST_F(RewriterTest, ASpokenFormOfSeveralWordsMapsOntoTheOneWrittenWord)
{
    Dictionary dictionary({ { "NASA", "National Aeronautics and Space Administration" } });
    KSpeechRewrite rewrite = KSpeechRewriter(dictionary.get()).rewrite(KString("I like NASA."));
    EXPECT_EQ(spokenOf(rewrite), "I like National Aeronautics and Space Administration. ");
    // The whole spoken span lights the word with its period; each spoken
    // word lights a part of it, in order.
    EXPECT_EQ(mapped(rewrite.positionMap, 7, 46), (Word { 7, 5 }));
    int32_t before = 7;
    for (int32_t start : { 7, 16, 28, 32, 38 }) {
        Word word = mapped(rewrite.positionMap, start, 3);
        EXPECT_GE(word.first, before) << start;
        EXPECT_LE(word.first + word.second, 12) << start;
        before = word.first;
    }
    // The words before it are mapped one to one.
    EXPECT_EQ(mapped(rewrite.positionMap, 2, 4), (Word { 2, 4 }));
}

TEST_F(RewriterTest, ReportedWordsAreClampedToTheMap)
{
    Map map { 0, 0, 1, 2, 3, 4 };
    // A start of 0 is taken as below 1, with the same result 0.
    EXPECT_EQ(mapped(map, 0, 2), (Word { 0, 1 }));
    EXPECT_EQ(mapped(map, -4, 6), (Word { 0, 1 }));
    // An end past the map ends at its last index.
    EXPECT_EQ(mapped(map, 3, 50), (Word { 2, 3 }));
    // Nothing covered, nothing told.
    EXPECT_EQ(mapped(map, 6, 1), (Word { -1, -1 }));
    EXPECT_EQ(mapped(map, 2, 0), (Word { -1, -1 }));
    EXPECT_EQ(mapped(Map {}, 0, 1), (Word { -1, -1 }));
    EXPECT_EQ(mapped(map, 2147483000, 2147483000), (Word { -1, -1 }));
}

namespace {

using speechtest::WordCatcher;
class ExtendedSpeechTest : public speechtest::SpeechMediaTest { };

} // namespace

TEST_F(ExtendedSpeechTest, TheEngineSpeaksTheRewrittenTextAndTheWordsComeBackAsWritten)
{
    Dictionary dictionary({ { "Dr", "Doctor" } });
    // Engine positions are 1-based in the spoken text "Doctor. Who is ".
    script().words = { { 1, 0 }, { 9, 300 }, { 13, 600 } };
    KPtr<WordCatcher> catcher(new WordCatcher());
    KExtendedSpeechPtr speech(new KExtendedSpeech());
    speech->addTarget(*catcher);
    speech->speak(KString(""), KString("Dr. Who is"));
    ASSERT_TRUE(speech->isPlaying());
    EXPECT_TRUE(speech->getEngine().isPlaying());
    ASSERT_EQ(script().requests.size(), 1u);
    EXPECT_EQ(script().requests[0].text, "Doctor. Who is ");
    EXPECT_EQ(speech->getGivenText(), KString("Dr. Who is"));
    EXPECT_EQ(speech->getText(), KString("Dr. Who is"));
    EXPECT_EQ(speech->getSpokenText(), KString("Doctor. Who is "));
    EXPECT_EQ(speech->getPositionMap().getUsedSize(), 15);
    EXPECT_EQ(speech->getPositionMap().getDirectDataAt(2), 1);

    manager->idle();
    EXPECT_EQ(catcher->words, (std::vector<Word> { { 0, 3 } }));
    EXPECT_EQ(speech->getWordStart(), 0);
    EXPECT_EQ(speech->getWordLength(), 3);
    script().positionMs = 300;
    manager->idle();
    EXPECT_EQ(catcher->words.back(), (Word { 4, 3 }));
    // At the end the rest is told, and both speeches end in the same pass.
    script().done = true;
    manager->idle();
    // The closing space the engine gets stands for the last letter, so the
    // whole last word lights.
    EXPECT_EQ(catcher->words.back(), (Word { 8, 2 }));
    EXPECT_EQ(catcher->words.size(), 3u);
    EXPECT_EQ(speech->getStatus(), KAbstractMedia::Loaded);
    EXPECT_EQ(speech->getEngine().getStatus(), KAbstractMedia::Loaded);
    EXPECT_EQ(speech->getWordStart(), -1);
    EXPECT_FALSE(manager->isIdling());
    speech->removeTarget(*catcher);
}

TEST_F(ExtendedSpeechTest, OperationsReachTheEngineAndItsOnlyReceiverIsTheSpeech)
{
    KExtendedSpeechPtr speech(new KExtendedSpeech());
    KSpeech& engineSpeech = speech->getEngine();
    EXPECT_TRUE(engineSpeech.getMediaFlags().test(KAbstractMedia::WordFeedback));
    KPtr<WordCatcher> stranger(new WordCatcher());
    engineSpeech.addTarget(*stranger);

    speech->setVolume(0.3);
    speech->setSpeed(1.0);
    speech->setVoice(KString("Italian"));
    EXPECT_EQ(engineSpeech.getVoiceName(), KString("Italian"));
    speech->setText(KString("Ciao"));
    speech->play();
    ASSERT_TRUE(speech->isPlaying());
    EXPECT_EQ(engineSpeech.targetCount(), 1);
    EXPECT_EQ(script().requests.back().voice, "roa/it");
    EXPECT_EQ(script().requests.back().wordsPerMinute, 450);
    EXPECT_DOUBLE_EQ(script().volume, 0.3);
    EXPECT_DOUBLE_EQ(speech->getSpeed(), 1.0);

    speech->pause();
    EXPECT_TRUE(speech->isPaused());
    EXPECT_TRUE(script().paused);
    speech->resume();
    EXPECT_TRUE(speech->isPlaying());
    EXPECT_FALSE(script().paused);
    speech->restart();
    EXPECT_TRUE(speech->isPlaying());
    EXPECT_EQ(script().requests.size(), 2u);

    // An engine stopped from elsewhere ends the speech at the next pass.
    engineSpeech.stop();
    manager->idle();
    EXPECT_EQ(speech->getStatus(), KAbstractMedia::Loaded);

    speech->unload();
    EXPECT_EQ(engineSpeech.getStatus(), KAbstractMedia::NotLoaded);
    speech->clear();
    EXPECT_TRUE(speech->getGivenText().isEmpty());
    EXPECT_TRUE(speech->getSpokenText().isEmpty());
    EXPECT_EQ(speech->getPositionMap().getUsedSize(), 0);
    // Nothing to say: play does nothing.
    speech->play();
    EXPECT_FALSE(speech->isPlaying());
    EXPECT_EQ(script().requests.size(), 2u);
}

TEST_F(ExtendedSpeechTest, WithoutAVoiceNothingLoads)
{
    manager->closeMediaSupport();
    engine.voiceList.clear();
    support->open();
    KExtendedSpeechPtr speech(new KExtendedSpeech());
    speech->speak(KString(""), KString("Hello"));
    EXPECT_EQ(speech->getStatus(), KAbstractMedia::NotLoaded);
    EXPECT_TRUE(speech->isDonePlaying());
    EXPECT_TRUE(script().requests.empty());
}
