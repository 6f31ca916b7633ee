// Placing sound highlight markers from the voice: onsets in levels, the
// reading's word times, pairing at pauses and pacing between, the whole
// update on fakes, and, with the real engine, a reading with known word
// times where the aligner must beat the rule of three.

#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "kmultimedia/KSoundHiliteAligner.h"
#include "kmultimedia/KSoundHiliteEditing.h"
#include "kmultimedia/KSoundHiliteMarker.h"
#include "kmultimedia/KSoundHiliteMedia.h"
#include "kmultimedia/KSpeechSupport.h"
#include "kmultimedia/testing/KFakeLevelReader.h"
#include "kmultimedia/testing/KFakeSpeech.h"
#include "kmultimedia/testing/KSpokenRecording.h"
#include "tests/kmultimedia/MediaTestSupport.h"
#include "tests/kmultimedia/SoundTestSupport.h"

#include <random>

using namespace soundtest;

namespace {

using Aligner = KSoundHiliteAligner;

std::vector<std::pair<int32_t, int32_t>> onsetPairs(const std::vector<Aligner::Onset>& onsets)
{
    std::vector<std::pair<int32_t, int32_t>> pairs;
    for (const Aligner::Onset& onset : onsets)
        pairs.emplace_back(onset.time, onset.quietBefore);
    return pairs;
}

std::vector<int32_t> timesOf(const KSoundHiliteMedia& media)
{
    std::vector<int32_t> times;
    for (int32_t i = 0; i < media.getMarkerCount(); ++i)
        times.push_back(media.getMarkerAt(i)->getElapsedTime());
    return times;
}

TEST(SoundHiliteAlignerLevels, OnsetsFollowQuietOfTheirLengthAndQuietIsJudgedAgainstTheFileItself)
{
    Aligner::Settings settings;
    // A breath of 40 ms is no pause; 200 ms is. The start counts as quiet.
    KSoundLevels levels = KFakeLevelReader::make(1200, { { 0, 300 }, { 340, 600 }, { 800, 1000 } });
    EXPECT_EQ(onsetPairs(Aligner::findOnsets(levels, settings)),
              (std::vector<std::pair<int32_t, int32_t>> { { 0, 10000 }, { 800, 200 } }));
    int32_t first = -1;
    int32_t last = -1;
    ASSERT_TRUE(Aligner::soundExtent(levels, settings, first, last));
    EXPECT_EQ(first, 0);
    EXPECT_EQ(last, 1000);

    // A hum 30 dB under the speech is quiet; sound after a leading silence
    // counts that silence.
    KSoundLevels hum = KFakeLevelReader::make(1000, { { 300, 500 }, { 700, 900 } }, 10, -10.0f, -40.0f);
    EXPECT_EQ(onsetPairs(Aligner::findOnsets(hum, settings)),
              (std::vector<std::pair<int32_t, int32_t>> { { 300, 10300 }, { 700, 200 } }));

    // All quiet: no sound at all.
    KSoundLevels silent = KFakeLevelReader::make(500, {}, 10, -70.0f, -70.0f);
    EXPECT_FALSE(Aligner::soundExtent(silent, settings, first, last));
    EXPECT_EQ(Aligner::findOnsets(KSoundLevels(), settings).size(), 0u);
}

TEST(SoundHiliteAlignerWords, EachMarkerTakesTheTimeOfTheSpokenWordWithinItAndTheOthersArePaced)
{
    std::vector<KSoundHiliteMarkerPtr> markers = KSoundHiliteEditing::layOut(KString("The fox, the dog"), 1);
    ASSERT_EQ(markers.size(), 4u);
    // "fox," and "dog" were not reported: "fox," lies between by its
    // characters, "dog" beyond the last at the reading's pace.
    std::vector<Aligner::SpokenWord> spoken { { 0, 0 }, { 9, 600 } };
    EXPECT_EQ(Aligner::spokenTimes(markers, spoken), (std::vector<int32_t> { 0, 267, 600, 867 }));
    // A report inside a word stands for it; none at all gives nothing.
    spoken = { { 1, 50 }, { 5, 250 }, { 9, 600 }, { 14, 800 } };
    EXPECT_EQ(Aligner::spokenTimes(markers, spoken), (std::vector<int32_t> { 50, 250, 600, 800 }));
    EXPECT_TRUE(Aligner::spokenTimes(markers, {}).empty());
}

TEST(SoundHiliteAlignerWords, SentencesBeginAfterAFullStopAQuestionOrAnExclamationEvenInQuotes)
{
    std::vector<KSoundHiliteMarkerPtr> markers
        = KSoundHiliteEditing::layOut(KString("Hello, fox. \"Why?\" he said! (Fine.) Go"), 1);
    EXPECT_EQ(Aligner::sentenceStarts(markers), (std::vector<bool> { false, false, true, true, false, true, true }));
}

TEST(SoundHiliteAlignerPlacing, WordsAfterPausesSnapToOnsetsAndTheOthersArePacedByTheSpeech)
{
    Aligner::Settings settings;
    // The reading: five words, a pause before the fourth.
    std::vector<int32_t> spoken { 0, 200, 400, 900, 1100 };
    KSoundLevels reading = KFakeLevelReader::make(1300, { { 0, 700 }, { 900, 1300 } });
    // The recording starts after a second of silence and pauses longer.
    KSoundLevels recording = KFakeLevelReader::make(4000, { { 1000, 2000 }, { 2600, 3400 } });
    std::vector<int32_t> times = Aligner::align(spoken, reading, recording, 4000, settings);
    // The first and fourth at the onsets; the second and third spread over
    // the sound before the pause, not over the pause; the last paced to the
    // end of the sound.
    EXPECT_EQ(times, (std::vector<int32_t> { 1000, 1286, 1571, 2600, 3000 }));

    // A stray onset near a word that the reader did not pause before is
    // taken only when it is close: 1300 lies 14 ms from the second word.
    KSoundLevels stray = KFakeLevelReader::make(4000, { { 1000, 1200 }, { 1300, 2000 }, { 2600, 3400 } });
    times = Aligner::align(spoken, reading, stray, 4000, settings);
    EXPECT_EQ(times[1], 1300);
    EXPECT_EQ(times[3], 2600);

    // Without levels the reading is stretched over the whole sound.
    times = Aligner::align({ 0, 500, 1000 }, KSoundLevels(), KSoundLevels(), 2800, settings);
    EXPECT_EQ(times, (std::vector<int32_t> { 0, 1000, 2000 }));
}

TEST(SoundHiliteAlignerPlacing, MarkersNeverCrossAndStayOneMillisecondApartWithinTheSound)
{
    Aligner::Settings settings;
    std::mt19937 random(7);
    for (int32_t round = 0; round < 300; ++round) {
        int32_t count = 1 + int32_t(random() % 40);
        std::vector<int32_t> spoken;
        int32_t at = int32_t(random() % 500);
        for (int32_t i = 0; i < count; ++i) {
            spoken.push_back(at);
            at += int32_t(random() % 400);
        }
        int32_t duration = count + int32_t(random() % 20000);
        std::vector<std::pair<int32_t, int32_t>> spans;
        for (int32_t t = int32_t(random() % 300); t < duration; t += 50 + int32_t(random() % 900))
            spans.emplace_back(t, t + 20 + int32_t(random() % 600));
        KSoundLevels recording = KFakeLevelReader::make(duration, spans);
        KSoundLevels reading = KFakeLevelReader::make(at + 500, { { 0, at / 2 }, { at / 2 + 150, at + 300 } });
        std::vector<int32_t> times
            = Aligner::align(spoken, round % 3 ? reading : KSoundLevels(), recording, duration, settings);
        ASSERT_EQ(times.size(), spoken.size());
        for (size_t i = 0; i < times.size(); ++i) {
            ASSERT_GE(times[i], 0) << round;
            ASSERT_LT(times[i], duration) << round;
            if (i > 0) {
                ASSERT_GE(times[i], times[i - 1] + 1) << round << " at " << i;
            }
        }
    }
}

class SoundHiliteAlignerUpdateTest : public MediaTest {
protected:
    void SetUp() override
    {
        MediaTest::SetUp();
        engine.script->speaksAtOnce = true;
        KSpeechSupport::setEngine(&engine);
        support = kAdopt(new KSpeechSupport());
        support->setInterfaceLanguage("en");
        manager->setSupport(KMediaManager::SpeechSupport, support.get());
        manager->setUp(KMediaManager::SpeechSupport);
        levels = std::make_shared<KFakeLevelReader::Script>();
        KFakeLevelReader::install(levels);
        media = kAdopt(new KSoundHiliteMedia());
        media->setText(KString("Once upon a time"));
        soundPath = folder.pathOf("reading.wav");
        media->setSoundFile(KFileReference(KPath(KString(soundPath.c_str()), KPath::kHostPlatform)));
    }
    void TearDown() override
    {
        media.clear();
        KFakeLevelReader::install(nullptr);
        manager->closeMediaSupport();
        support.clear();
        KSpeechSupport::setEngine(nullptr);
        MediaTest::TearDown();
    }

    KFakeSpeechEngine engine;
    KSpeechSupportPtr support;
    std::shared_ptr<KFakeLevelReader::Script> levels;
    KPtr<KSoundHiliteMedia> media;
    TempFolder folder;
    std::string soundPath;
};

TEST_F(SoundHiliteAlignerUpdateTest, TheTextIsReadBySpeechAndItsWordsArePlacedInTheSound)
{
    engine.script->words = { { 1, 0 }, { 6, 300 }, { 11, 550 }, { 13, 900 } };
    levels->answerOtherwise = true;
    levels->otherwise = KFakeLevelReader::make(1200, { { 0, 800 }, { 900, 1200 } });
    levels->files[soundPath] = KFakeLevelReader::make(3000, { { 500, 1900 }, { 2400, 2900 } });
    ASSERT_EQ(Aligner::update(*media, 0, KString()), Aligner::Result::Aligned);
    std::vector<int32_t> times = timesOf(*media);
    ASSERT_EQ(times.size(), 4u);
    EXPECT_EQ(times.front(), 500);
    EXPECT_EQ(times.back(), 2400);
    EXPECT_EQ(media->getMarkerAt(3)->getText(), KString("time"));
    EXPECT_EQ(media->getMarkerAt(3)->getWordStart(), 12);
    // The sound first, then the reading the engine rendered into a file.
    ASSERT_EQ(levels->reads.size(), 2u);
    EXPECT_EQ(levels->reads[0], soundPath);
    ASSERT_EQ(engine.script->requests.size(), 1u);
}

TEST_F(SoundHiliteAlignerUpdateTest, WhatCannotBeReadLeavesTheMarkersAsTheyWere)
{
    media->addMarker(*new KSoundHiliteMarker(123, 0, KString("Once")));
    // The sound cannot be read.
    EXPECT_EQ(Aligner::update(*media, 3000, KString()), Aligner::Result::NoSound);
    // The engine reports no word.
    levels->files[soundPath] = KFakeLevelReader::make(3000, { { 500, 1900 } });
    EXPECT_EQ(Aligner::update(*media, 3000, KString()), Aligner::Result::NoSpeech);
    // No words in the text.
    media->setText(KString("   "));
    EXPECT_EQ(Aligner::update(*media, 3000, KString()), Aligner::Result::NoWords);
    EXPECT_EQ(timesOf(*media), (std::vector<int32_t> { 123 }));
}

// The engine's own reading of a story, each sentence at its own pace with
// pauses of its own between them; the aligner reads it again at the normal
// pace with another voice.
TEST_F(MediaTest, OnTheEnginesReadingOfAStoryTheAlignerBeatsTheRuleOfThree)
{
    KSpeechSupportPtr support(new KSpeechSupport());
    support->setInterfaceLanguage("en");
    manager->setSupport(KMediaManager::SpeechSupport, support.get());
    manager->setUp(KMediaManager::SpeechSupport);
    ASSERT_FALSE(support->getVoices().empty()) << "espeak-ng has no voices";
    KString voice = support->getDefaultVoice();
    for (const KString& each : support->getVoicesFor("en")) {
        if (each != support->getDefaultVoice())
            voice = each;
    }
    TempFolder folder;
    std::string path = folder.pathOf("story.wav");
    KSpokenRecording recording;
    ASSERT_TRUE(recording.make({ "Once upon a time, a little fox lived at the edge of a quiet forest.",
                                 "Every morning he walked down to the river to watch the fish.",
                                 "One day the water was high, and the stepping stones were gone.",
                                 "Then a heron landed beside him and asked why he looked so sad." },
                               voice, path))
        << recording.getFailure();
    KPtr<KSoundHiliteMedia> media(new KSoundHiliteMedia());
    media->setText(recording.getText());
    media->setSoundFile(KFileReference(KPath(KString(path.c_str()), KPath::kHostPlatform)));

    ASSERT_EQ(KSoundHiliteEditing::update(*media, recording.getDuration()), KSoundHiliteEditing::UpdateResult::Updated);
    double ruleOfThree = recording.meanError(*media);
    ASSERT_EQ(Aligner::update(*media, recording.getDuration(), support->getDefaultVoice()), Aligner::Result::Aligned);
    double aligned = recording.meanError(*media);
    ASSERT_GE(aligned, 0.0);
    EXPECT_LT(aligned, ruleOfThree / 2.0) << "aligner " << aligned << " ms, rule of three " << ruleOfThree << " ms";
    EXPECT_LT(aligned, 150.0);
    media.clear();
    manager->closeMediaSupport();
}

} // namespace
