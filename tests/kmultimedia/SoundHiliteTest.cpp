// Sound highlights: the marker and media streams, the SHI file and its
// damaged forms, laying out and merging markers, and the highlight as the
// sound plays, over the fake player and the fake layer's clock.

#include "kernel/KError.h"
#include "kernel/KFile.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "kernel/KVariable.h"
#include "kmultimedia/KMediaFeedbackEvent.h"
#include "kmultimedia/KSound.h"
#include "kmultimedia/KSoundHiliteEditing.h"
#include "kmultimedia/KSoundHiliteFile.h"
#include "kmultimedia/KSoundHiliteMarker.h"
#include "kmultimedia/KSoundHiliteMedia.h"
#include "kmultimedia/KSoundSupport.h"
#include "kmultimedia/testing/KFakeSound.h"
#include "tests/kernel/FileTestSupport.h"
#include "tests/kernel/PersistenceTestSupport.h"
#include "tests/kmultimedia/MediaTestSupport.h"
#include "windowing/KTimerManager.h"

#include <algorithm>
#include <cstring>

using namespace filetest;
using namespace persistencetest;

namespace {

// A word event as the receivers see it; time -1 when the event has none.
struct Told {
    int32_t start;
    int32_t length;
    int32_t time;
    bool operator==(const Told&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Told& told)
{
    return out << "{" << told.start << ", " << told.length << ", " << told.time << "}";
}

class HighlightCatcher : public KThing {
public:
    KEventReturn handleEvent(KEvent& event) override
    {
        auto* feedback = dynamic_cast<KMediaFeedbackEvent*>(&event);
        if (!feedback)
            return 0;
        KVariable* type = feedback->getValue(KMediaFeedbackEvent::kMediaType);
        EXPECT_TRUE(type && type->getString() == "SoundHilite");
        KVariable* time = feedback->getValue(KMediaFeedbackEvent::kElapsedTime);
        KVariable* start = feedback->getValue(KMediaFeedbackEvent::kWordStart);
        if (!start) {
            clock.push_back(time ? time->getLong() : -1);
            return 1;
        }
        words.push_back({ start->getLong(), feedback->getValue(KMediaFeedbackEvent::kWordLength)->getLong(),
                          time ? time->getLong() : -1 });
        return 1;
    }
    std::vector<Told> words;
    std::vector<int32_t> clock;
};

std::vector<uint8_t> stringRecord(const char* text)
{
    auto length = int32_t(std::strlen(text));
    return Bytes().frame("KString", 15 + length).section(1, 15 + length).s(1).l(length).text(text).b(0);
}

KFileReference referenceTo(const std::string& path)
{
    return KFileReference(KPath(KString(path.c_str()), KPath::LinuxPlatform));
}

// The markers of a media as (time, start, length, word).
struct Mark {
    int32_t time;
    int32_t start;
    int32_t length;
    std::string word;
    bool operator==(const Mark&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Mark& mark)
{
    return out << "{" << mark.time << ", " << mark.start << ", " << mark.length << ", \"" << mark.word << "\"}";
}

std::vector<Mark> marksOf(const KSoundHiliteMedia& media)
{
    std::vector<Mark> marks;
    for (int32_t i = 0; i < media.getMarkerCount(); ++i) {
        KSoundHiliteMarker* marker = media.getMarkerAt(i);
        marks.push_back(
            { marker->getElapsedTime(), marker->getWordStart(), marker->getWordLength(), marker->getText().c_str() });
    }
    return marks;
}

class SoundHiliteTest : public MediaTest {
protected:
    void SetUp() override
    {
        MediaTest::SetUp();
        script = std::make_shared<KFakeSound::Script>();
        KFakeSound::install(script);
        support = kAdopt(new KSoundSupport());
        manager->setSupport(KMediaManager::SoundSupport, support.get());
        manager->setUp(KMediaManager::SoundSupport);
        catcher = kAdopt(new HighlightCatcher());
    }
    void TearDown() override
    {
        if (media)
            media->removeTarget(*catcher);
        media.clear();
        manager->closeMediaSupport();
        support.clear();
        KFakeSound::install(nullptr);
        MediaTest::TearDown();
    }

    // A media over the fake sound, telling the catcher.
    KSoundHiliteMedia& makeMedia(const char* text, std::initializer_list<std::pair<int32_t, int32_t>> marks)
    {
        media = kAdopt(new KSoundHiliteMedia());
        media->setSoundFile(referenceTo("/sounds/reading.wav"));
        media->setText(KString(text));
        for (auto [time, start] : marks) {
            int32_t end = start;
            while (end < int32_t(std::strlen(text)) && text[end] != ' ')
                ++end;
            media->addMarker(*new KSoundHiliteMarker(time, start, KString(text).mid(start, end - start)));
        }
        media->addTarget(*catcher);
        return *media;
    }
    // Moves the player and the wall clock alike.
    void pass(int32_t milliseconds)
    {
        KFakeSound::advance(*script, milliseconds / 1000.0);
        layer.advance(uint32_t(milliseconds));
        manager->idle();
    }

    std::shared_ptr<KFakeSound::Script> script;
    KSoundSupportPtr support;
    KPtr<HighlightCatcher> catcher;
    KSoundHiliteMediaPtr media;
};

} // namespace

TEST_F(SoundHiliteTest, AMarkerStreamsItsFieldsInOrder)
{
    KSoundHiliteMarker marker(1500, 4, KString("cat"));
    marker.setSelected(true);
    EXPECT_EQ(marker.getWordLength(), 3);
    std::vector<uint8_t> bytes = streamOf(marker);
    EXPECT_EQ(bytes, Bytes()
                         .frame("KSoundHiliteMarker", 55)
                         .section(1, 55)
                         .l(1500)
                         .l(4)
                         .l(3)
                         .append(stringRecord("cat"))
                         .b(1)
                         .get());
    KSoundHiliteMarkerPtr back(new KSoundHiliteMarker());
    EXPECT_EQ(readInto(*back, bytes), 0);
    EXPECT_EQ(back->getElapsedTime(), 1500);
    EXPECT_EQ(back->getWordStart(), 4);
    EXPECT_EQ(back->getWordLength(), 3);
    EXPECT_EQ(back->getText(), KString("cat"));
    EXPECT_TRUE(back->isSelected());
}

TEST_F(SoundHiliteTest, TheMediaStreamsMarkersSoundAndTextAndTheShiFileLeadsWithTheDuration)
{
    KSoundHiliteMedia& original = makeMedia("The cat sat", { { 0, 0 }, { 400, 4 }, { 800, 8 } });
    std::vector<uint8_t> bytes = streamOf(original);
    // The frame, then the bag's record, and the text's record at the end.
    EXPECT_EQ(std::vector<uint8_t>(bytes.begin(), bytes.begin() + 4), Bytes().l(idOf("KSoundHiliteMedia")).get());
    EXPECT_EQ(std::vector<uint8_t>(bytes.begin() + 24, bytes.begin() + 28), Bytes().l(idOf("KBag")).get());
    std::vector<uint8_t> text = stringRecord("The cat sat");
    EXPECT_TRUE(std::equal(text.rbegin(), text.rend(), bytes.rbegin()));
    // Each marker stands in the bag with its class tag.
    std::vector<uint8_t> second = Bytes().l(idOf("KSoundHiliteMarker")).append(streamOf(*original.getMarkerAt(1)));
    EXPECT_NE(std::search(bytes.begin(), bytes.end(), second.begin(), second.end()), bytes.end());

    TempFolder folder;
    KFileReference shi(folder.pathOf("reading.SHI"));
    ASSERT_TRUE(KSoundHiliteFile::save(shi, 1234, original));
    std::vector<uint8_t> file = bytesOf(folder.file("reading.SHI"));
    EXPECT_EQ(std::vector<uint8_t>(file.begin(), file.begin() + 4), Bytes().l(1234).get());
    EXPECT_EQ(std::vector<uint8_t>(file.begin() + 4, file.end()), bytes);

    KSoundHiliteMediaPtr loaded(new KSoundHiliteMedia());
    int32_t duration = 0;
    ASSERT_TRUE(KSoundHiliteFile::load(shi, duration, *loaded));
    EXPECT_EQ(duration, 1234);
    EXPECT_EQ(loaded->getText(), KString("The cat sat"));
    EXPECT_EQ(loaded->getSoundFile().getPath(), original.getSoundFile().getPath());
    EXPECT_EQ(marksOf(*loaded), marksOf(original));

    // A copy has markers of its own.
    KSoundHiliteMediaPtr copy(static_cast<KSoundHiliteMedia*>(original.deepCopy()));
    EXPECT_EQ(marksOf(*copy), marksOf(original));
    EXPECT_NE(copy->getMarkerAt(0), original.getMarkerAt(0));
    EXPECT_EQ(copy->getCurrentWordStart(), -1);
    EXPECT_FALSE(copy->isLoaded());
}

TEST_F(SoundHiliteTest, ADamagedShiLoadsWhatItCanSortedAndInsideTheText)
{
    KSoundHiliteMedia& original = makeMedia("one two three", { { 1111, 0 }, { 2222, 4 }, { 2500, 8 } });
    original.addMarker(*new KSoundHiliteMarker(2600, 4444, KString("gone")));
    original.addMarker(*new KSoundHiliteMarker(2700, 8, KString("three")));
    original.getMarkerAt(4)->setWordLength(5555);
    KFile out;
    out.setMode(KFileModeMemory);
    KSoundHiliteFile::write(out, -40, original);
    auto* data = static_cast<const uint8_t*>(out.getMemoryData());
    std::vector<uint8_t> bytes(data, data + out.getMemorySize());
    // Out of order, before the start, outside the text, past its end.
    ASSERT_TRUE(patchLong(bytes, 1111, 3333));
    ASSERT_TRUE(patchLong(bytes, 2222, -7));

    KSoundHiliteMediaPtr loaded(new KSoundHiliteMedia());
    int32_t duration = 99;
    {
        RamFile in(bytes);
        EXPECT_TRUE(KSoundHiliteFile::read(*in, duration, *loaded));
    }
    EXPECT_EQ(duration, 0);
    EXPECT_EQ(marksOf(*loaded),
              (std::vector<Mark> {
                  { 0, 4, 3, "two" }, { 2500, 8, 5, "three" }, { 2700, 8, 5, "three" }, { 3333, 0, 3, "one" } }));

    // Cut anywhere, the file reads as damaged and what came is still sane.
    for (size_t cut = 0; cut < bytes.size(); cut += 7) {
        std::vector<uint8_t> part(bytes.begin(), bytes.begin() + cut);
        RamFile in(part);
        EXPECT_FALSE(KSoundHiliteFile::read(*in, duration, *loaded)) << cut;
        for (int32_t i = 0; i < loaded->getMarkerCount(); ++i) {
            KSoundHiliteMarker* marker = loaded->getMarkerAt(i);
            EXPECT_GE(marker->getElapsedTime(), 0);
            EXPECT_LE(marker->getWordStart() + marker->getWordLength(), loaded->getText().getLength());
            if (i > 0) {
                EXPECT_LE(loaded->getMarkerAt(i - 1)->getElapsedTime(), marker->getElapsedTime());
            }
        }
    }

    // Another class after the duration is no sound highlight at all.
    RamFile other(Bytes().l(10).append(stringRecord("The cat sat")));
    EXPECT_FALSE(KSoundHiliteFile::read(*other, duration, *loaded));
    EXPECT_EQ(loaded->getMarkerCount(), 0);
    EXPECT_TRUE(loaded->getText().isEmpty());

    TempFolder folder;
    EXPECT_FALSE(KSoundHiliteFile::load(KFileReference(folder.pathOf("absent.SHI")), duration, *loaded));
}

TEST_F(SoundHiliteTest, UpdateLaysMarkersOutByCharactersOverTheDuration)
{
    std::vector<KSoundHiliteMarkerPtr> laid = KSoundHiliteEditing::layOut(KString("The  cat\tsat\r\nok"), 1600);
    ASSERT_EQ(laid.size(), 4u);
    // Sixteen characters over 1.6 s: 100 ms each, blanks counted.
    std::vector<Mark> marks;
    for (const KSoundHiliteMarkerPtr& marker : laid)
        marks.push_back(
            { marker->getElapsedTime(), marker->getWordStart(), marker->getWordLength(), marker->getText().c_str() });
    EXPECT_EQ(marks, (std::vector<Mark> {
                         { 0, 0, 3, "The" }, { 500, 5, 3, "cat" }, { 900, 9, 3, "sat" }, { 1400, 14, 2, "ok" } }));
    EXPECT_EQ(KSoundHiliteEditing::layOut(KString("   "), 1000).size(), 0u);
    // Truncated, not rounded.
    EXPECT_EQ(KSoundHiliteEditing::layOut(KString("a b"), 1000)[1]->getElapsedTime(), 666);

    // Without a duration the sound's own length is taken.
    KSoundHiliteMedia& media = makeMedia("Hello world", {});
    EXPECT_EQ(KSoundHiliteEditing::update(media, 0), KSoundHiliteEditing::UpdateResult::Updated);
    EXPECT_EQ(marksOf(media), (std::vector<Mark> { { 0, 0, 5, "Hello" }, { 1090, 6, 5, "world" } }));
    EXPECT_FALSE(media.isLoaded()) << "the sound was opened only to measure it";
    // A sound of no length refuses, and the markers stay.
    media.setSoundFile(referenceTo("/sounds/broken.bad"));
    EXPECT_EQ(KSoundHiliteEditing::update(media, -1), KSoundHiliteEditing::UpdateResult::NoDuration);
    EXPECT_EQ(media.getMarkerCount(), 2);
    EXPECT_FALSE(KSoundHiliteEditing::noDurationText().isEmpty());
    // An empty text leaves no markers.
    media.setText(KString(""));
    EXPECT_EQ(KSoundHiliteEditing::update(media, -1), KSoundHiliteEditing::UpdateResult::Updated);
    EXPECT_EQ(media.getMarkerCount(), 0);
}

TEST_F(SoundHiliteTest, MergeJoinsContiguousSelectedMarkersOnly)
{
    KSoundHiliteMedia& media = makeMedia("cat dog emu", { { 0, 0 }, { 300, 4 }, { 600, 8 } });
    int32_t first = 0;
    int32_t last = 0;
    EXPECT_EQ(KSoundHiliteEditing::checkMerge(media, first, last), KSoundHiliteEditing::MergeCheck::NothingToMerge);
    media.getMarkerAt(0)->setSelected(true);
    EXPECT_EQ(KSoundHiliteEditing::checkMerge(media, first, last), KSoundHiliteEditing::MergeCheck::NothingToMerge);
    media.getMarkerAt(2)->setSelected(true);
    EXPECT_EQ(KSoundHiliteEditing::checkMerge(media, first, last), KSoundHiliteEditing::MergeCheck::NotContiguous);
    EXPECT_EQ(KSoundHiliteEditing::notContiguousText(), KString("Merge can be performed only on contiguous markers"));
    EXPECT_FALSE(KSoundHiliteEditing::merge(media, 0, 2));
    EXPECT_EQ(media.getMarkerCount(), 3);

    media.getMarkerAt(2)->setSelected(false);
    media.getMarkerAt(1)->setSelected(true);
    ASSERT_EQ(KSoundHiliteEditing::checkMerge(media, first, last), KSoundHiliteEditing::MergeCheck::Ready);
    EXPECT_EQ(first, 0);
    EXPECT_EQ(last, 1);
    ASSERT_TRUE(KSoundHiliteEditing::merge(media, first, last));
    // Two words of three letters: eight characters with the closing blank.
    EXPECT_EQ(marksOf(media), (std::vector<Mark> { { 0, 0, 8, "cat dog " }, { 600, 8, 3, "emu" } }));
}

TEST_F(SoundHiliteTest, ThePassedMarkerIsLitAndNothingBeforeTheFirst)
{
    KSoundHiliteMedia& hilite = makeMedia("one two three", { { 100, 0 }, { 400, 4 }, { 700, 8 } });
    hilite.play();
    ASSERT_TRUE(hilite.isPlaying());
    EXPECT_TRUE(script->playing);
    manager->idle();
    pass(100);
    EXPECT_TRUE(catcher->words.empty()) << "a marker is passed only after its time";
    pass(1);
    EXPECT_EQ(catcher->words, (std::vector<Told> { { 0, 3, 101 } }));
    EXPECT_EQ(hilite.getCurrentWordStart(), 0);
    pass(200);
    EXPECT_EQ(catcher->words.size(), 1u) << "the same word stays lit without a new event";
    pass(400);
    EXPECT_EQ(catcher->words.back(), (Told { 8, 5, 701 })) << "a marker passed in one step is skipped";
    EXPECT_EQ(catcher->words.size(), 2u);

    hilite.stop();
    EXPECT_EQ(catcher->words.back(), (Told { -1, -1, 701 }));
    EXPECT_EQ(hilite.getCurrentWordStart(), -1);
    EXPECT_FALSE(script->playing);
    EXPECT_EQ(hilite.getStatus(), KAbstractMedia::Loaded);
    hilite.stop();
    EXPECT_EQ(catcher->words.size(), 3u) << "a stopped media says nothing more";
}

TEST_F(SoundHiliteTest, OneWordIsLitAtTheFirstUpdatePastZeroAndTheLaterOfTwoEqualMarkersWins)
{
    KSoundHiliteMedia& single = makeMedia("Hello", {});
    KSoundHiliteEditing::update(single, 1000);
    ASSERT_EQ(single.getMarkerCount(), 1);
    EXPECT_EQ(single.getMarkerAt(0)->getElapsedTime(), 0);
    single.play();
    manager->idle();
    EXPECT_TRUE(catcher->words.empty());
    pass(1);
    EXPECT_EQ(catcher->words, (std::vector<Told> { { 0, 5, 1 } }));
    single.stop();

    catcher->words.clear();
    KSoundHiliteMedia& twins = makeMedia("big red dog", { { 300, 0 }, { 300, 4 }, { 900, 8 } });
    twins.play();
    pass(301);
    EXPECT_EQ(catcher->words, (std::vector<Told> { { 4, 3, 301 } }));
}

TEST_F(SoundHiliteTest, TheHighlightFollowsThePlayerAndTheStopwatchOnlyStandsIn)
{
    KSoundHiliteMedia& hilite = makeMedia("late words", { { 200, 0 }, { 500, 5 } });
    hilite.play();
    // The wall clock runs ahead of what is heard: the player's word counts.
    layer.advance(600);
    KFakeSound::advance(*script, 0.25);
    manager->idle();
    EXPECT_EQ(catcher->words, (std::vector<Told> { { 0, 4, 250 } }));
    EXPECT_EQ(hilite.getElapsedTime(), 250);
    // A player that cannot tell leaves the stopwatch to say where it is.
    script->positionKnown = false;
    manager->idle();
    EXPECT_EQ(catcher->words.back(), (Told { 5, 5, 600 }));
    hilite.stop();
    EXPECT_EQ(hilite.getElapsedTime(), 0);
}

TEST_F(SoundHiliteTest, TheEndOfTheSoundEndsTheMediaOrLoopsIt)
{
    script->duration = 1.0;
    KSoundHiliteMedia& hilite = makeMedia("one two", { { 0, 0 }, { 500, 4 } });
    hilite.play();
    pass(600);
    EXPECT_EQ(catcher->words.back(), (Told { 4, 3, 600 }));
    // The manager stops and rewinds the sound first; the media ends in the
    // same pass and clears the highlight.
    pass(500);
    EXPECT_EQ(hilite.getStatus(), KAbstractMedia::Loaded);
    EXPECT_EQ(catcher->words.back().start, -1);
    EXPECT_FALSE(manager->isIdling());

    hilite.setLooping(true);
    hilite.play();
    pass(1000);
    EXPECT_TRUE(hilite.isPlaying()) << "looping starts it again";
    EXPECT_TRUE(script->playing);
    pass(1);
    EXPECT_EQ(catcher->words.back(), (Told { 0, 3, 1 }));
    hilite.setLooping(false);
    hilite.stop();
}

TEST_F(SoundHiliteTest, PlayNeedsASoundAndATextAndTheClockTicksOnlyWithFeedback)
{
    KSoundHiliteMedia& silent = makeMedia("", { { 0, 0 } });
    silent.play();
    EXPECT_FALSE(silent.isPlaying());
    EXPECT_EQ(silent.getStatus(), KAbstractMedia::Loaded);

    KSoundHiliteMedia& broken = makeMedia("words", { { 0, 0 } });
    broken.setSoundFile(referenceTo("/sounds/broken.bad"));
    broken.play();
    EXPECT_EQ(broken.getStatus(), KAbstractMedia::NotLoaded);
    EXPECT_FALSE(broken.isDonePlaying()) << "without a sound it counts as running";

    KSoundHiliteMedia& clocked = makeMedia("tick tock", { { 0, 0 } });
    clocked.setVolume(0.25);
    clocked.play();
    EXPECT_DOUBLE_EQ(script->volume, 0.25);
    layer.advance(60);
    KTimerManager::get().idle();
    EXPECT_TRUE(catcher->clock.empty());
    clocked.getMediaFlags().set(KAbstractMedia::WordFeedback);
    KFakeSound::advance(*script, 0.12);
    layer.advance(60);
    KTimerManager::get().idle();
    EXPECT_EQ(catcher->clock, std::vector<int32_t> { 120 });
    clocked.stop();
    layer.advance(200);
    KTimerManager::get().idle();
    EXPECT_EQ(catcher->clock.size(), 1u);
}
