// The text element over the fake speech engine and sound player: its
// stream, how it lights the words it reads, and what it draws.

#include "tests/graphics/StreamTestSupport.h"
#include "tests/support/TestSupport.h"
#include "tests/tape/TimedElementTestSupport.h"

#include "graphics/KTextBlockObject.h"
#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassStreamState.h"
#include "kernel/KMemory.h"
#include "kernel/KStringBag.h"
#include "kernel/KVariable.h"
#include "kmultimedia/KExtendedSpeech.h"
#include "kmultimedia/KMediaFeedbackEvent.h"
#include "kmultimedia/KSoundHiliteMarker.h"
#include "kmultimedia/KSoundHiliteMedia.h"
#include "kmultimedia/KSpeech.h"
#include "tape/StylusText.h"

#include <cmath>
#include <cstring>
#include <limits>

using namespace tapetest;
using namespace timedtest;
using mediatest::referenceTo;

namespace {

constexpr uint32_t kYellow = 0xFFFF00;
constexpr uint32_t kWhite = 0xFFFFFF;
constexpr uint32_t kBlue = 0x0000FF;
constexpr uint32_t kGreen = 0x00FF00;

int32_t longAt(const std::vector<uint8_t>& bytes, size_t offset) { return int32_t(streams::longAt(bytes, offset)); }

using streams::doubleAt;

void putDouble(std::vector<uint8_t>& bytes, size_t offset, double value) { streams::putDoubleAt(bytes, offset, value); }

bool bytesAt(const std::vector<uint8_t>& bytes, size_t offset, const std::vector<uint8_t>& expected)
{
    return offset + expected.size() <= bytes.size()
           && std::equal(expected.begin(), expected.end(), bytes.begin() + long(offset));
}

// A section of a class stream: its number, where its payload starts and its
// payload's length.
struct Section {
    int32_t id;
    size_t payload;
    size_t length;
};

std::vector<Section> sectionsOf(const std::vector<uint8_t>& bytes)
{
    std::vector<Section> found;
    int32_t count = longAt(bytes, 12);
    size_t at = 16;
    for (int32_t i = 0; i < count && at + 8 <= bytes.size(); ++i) {
        auto length = size_t(longAt(bytes, at + 4));
        found.push_back({ longAt(bytes, at), at + 8, length - 8 });
        at += length;
    }
    return found;
}

// The host that also keeps the words the text lit.
class WordHost : public TimedHost {
public:
    void wordLit(TapeObject&, int32_t start, int32_t length) override { words.emplace_back(start, length); }
    std::vector<std::pair<int32_t, int32_t>> words;
};

class TextElementTest : public TimedElementTest {
protected:
    void SetUp() override
    {
        TimedElementTest::SetUp();
        TapeHost::install(&words);
    }
    void TearDown() override
    {
        KClassStreamState::reset();
        TimedElementTest::TearDown();
    }

    // A text in 12 points in a rectangle of the page.
    StylusTextPtr makeText(const char* text, const KGraphicRectangle& bounds = KGraphicRectangle(10, 10, 140, 60))
    {
        StylusTextPtr made(new StylusText());
        KTextStyle style;
        style.setFont(KFont("Sans", 12.0));
        made->setTextBlock(KTextBlock(KString(text), style));
        made->setBounds(bounds);
        return made;
    }
    // Words the fake engine reports when it starts: (1-based position, ms).
    void scriptWords(const std::vector<std::pair<int32_t, int32_t>>& list)
    {
        engine.script->words.clear();
        for (auto [position, ms] : list)
            engine.script->words.push_back({ position, ms });
    }
    void fillPage(uint32_t colour) { page->getPageDevice().fillRectangle(page->getPageBounds(), rgb(colour)); }
    // Every page pixel of the colour lies in one of the boxes, and some do.
    void expectColourOnlyIn(uint32_t colour, const std::vector<KWideRectangle>& boxes)
    {
        int64_t inside = 0;
        for (int32_t y = 0; y < kPageHeight; ++y) {
            for (int32_t x = 0; x < kPageWidth; ++x) {
                if (pixel(*page, x, y) != colour)
                    continue;
                bool boxed = false;
                for (const KWideRectangle& box : boxes)
                    boxed = boxed || box.contains(KWidePoint(x, y));
                EXPECT_TRUE(boxed) << x << "," << y;
                inside += boxed;
            }
        }
        EXPECT_GT(inside, 0);
    }
    // A word event as a medium sends it.
    static KEventReturn sendWord(KThing& target, KThing* source, const char* type, int32_t start, int32_t length)
    {
        KPtr<KMediaFeedbackEvent> event = kAdopt(new KMediaFeedbackEvent());
        event->setSource(source);
        event->setValue(KMediaFeedbackEvent::kMediaType, KVariable(KString(type)));
        event->setValue(KMediaFeedbackEvent::kWordStart, KVariable(start));
        event->setValue(KMediaFeedbackEvent::kWordLength, KVariable(length));
        return target.handleEvent(*event);
    }
    // A recording of three words of "one two three" at 0, 500 and 1000 ms.
    KSoundHiliteMediaPtr makeRecording(const std::filesystem::path& sound)
    {
        KSoundHiliteMediaPtr recording(new KSoundHiliteMedia());
        recording->setText("one two three");
        recording->setSoundFile(referenceTo(sound));
        recording->addMarker(*new KSoundHiliteMarker(0, 0, "one"));
        recording->addMarker(*new KSoundHiliteMarker(500, 4, "two"));
        recording->addMarker(*new KSoundHiliteMarker(1000, 8, "three"));
        return recording;
    }

    WordHost words;
};

} // namespace

TEST_F(TextElementTest, ANewTextIsReadAloudWithItsWordsLitOnWhite)
{
    StylusTextPtr text(new StylusText());
    EXPECT_EQ(text->getType(), TextType);
    EXPECT_EQ(text->getPlainText(), "New Text");
    const KTextStyle& style = text->getTextBlock().getStyleAt(0);
    EXPECT_EQ(style.getFont().getName(), "Arial");
    EXPECT_DOUBLE_EQ(style.getFont().getSize(), 24.0);
    EXPECT_EQ(style.getColour(), KColor(KColor::Black));
    EXPECT_EQ(text->getBackColour(), KColor(KColor::White));
    EXPECT_EQ(text->getMarkColour(), KColor(KColor::Yellow));
    EXPECT_FALSE(text->isTransparent());
    EXPECT_TRUE(text->getWaitForEnd());
    EXPECT_TRUE(text->getSpeaks());
    EXPECT_TRUE(text->getMarksWords());
    EXPECT_FALSE(text->getUsesRecording());
    EXPECT_EQ(text->getVoice(), speechSupport->getDefaultVoice());

    // Either way of reading aloud makes the text a stop.
    EXPECT_TRUE(text->speaks());
    text->setSpeaks(false);
    EXPECT_FALSE(text->speaks());
    text->setUsesRecording(true);
    EXPECT_TRUE(text->speaks());

    text->setVolume(std::numeric_limits<double>::quiet_NaN());
    EXPECT_DOUBLE_EQ(text->getVolume(), 0.0);
    text->setVolume(3.0);
    EXPECT_DOUBLE_EQ(text->getVolume(), 1.0);

    // A copy has its own text block and recording.
    text->setRecording(*makeRecording(folder / "one.wav"));
    StylusTextPtr copy(static_cast<StylusText*>(text->deepCopy()));
    EXPECT_NE(&copy->getTextBlock(), &text->getTextBlock());
    EXPECT_NE(&copy->getRecording(), &text->getRecording());
    EXPECT_EQ(copy->getRecording().getMarkerCount(), 3);
    EXPECT_TRUE(copy->getUsesRecording());
}

TEST_F(TextElementTest, TheStreamHoldsFourSectionsAndOlderReadersSkipTheRecording)
{
    StylusTextPtr text = makeText("Once upon\ra time");
    text->setVoice("Italian");
    text->setTransparent(true);
    text->setWaitForEnd(false);
    text->setMarkColour(rgb(kGreen));
    text->setBackColour(rgb(kBlue));
    text->setMarksWords(false);
    text->setVolume(0.25);
    text->setUsesRecording(true);
    text->setRecording(*makeRecording(folder / "tale.wav"));
    text->setRecordingDuration(1800);
    std::vector<uint8_t> bytes = streamOf(*text);

    ASSERT_GE(bytes.size(), 24u);
    EXPECT_EQ(longAt(bytes, 0), StylusText::classRecord->getClassID());
    EXPECT_EQ(longAt(bytes, 8), int32_t(bytes.size()) - 16);
    std::vector<Section> sections = sectionsOf(bytes);
    ASSERT_EQ(sections.size(), 4u);
    for (int32_t i = 0; i < 4; ++i)
        EXPECT_EQ(sections[size_t(i)].id, i + 1);

    // Section 1: the graphic element's record, then the text's fields.
    size_t at = sections[0].payload;
    EXPECT_EQ(longAt(bytes, at), TapeGraphicObject::classRecord->getClassID());
    at += 16 + size_t(longAt(bytes, at + 8));
    std::vector<uint8_t> block = streamOf(const_cast<KTextBlock&>(text->getTextBlock()));
    EXPECT_TRUE(bytesAt(bytes, at, block));
    at += block.size();
    KString voice("Italian");
    std::vector<uint8_t> voiceBytes = streamOf(voice);
    EXPECT_TRUE(bytesAt(bytes, at, voiceBytes));
    at += voiceBytes.size();
    EXPECT_TRUE(bytesAt(bytes, at, { 0, 1, 1 })); // waitForEnd, transparent, speaks
    at += 3;
    KColor green = rgb(kGreen);
    KColor blue = rgb(kBlue);
    std::vector<uint8_t> greenBytes = streamOf(green);
    std::vector<uint8_t> blueBytes = streamOf(blue);
    EXPECT_TRUE(bytesAt(bytes, at, greenBytes));
    at += greenBytes.size();
    EXPECT_TRUE(bytesAt(bytes, at, blueBytes));
    at += blueBytes.size();
    EXPECT_EQ(bytes[at], 0); // marksWords
    EXPECT_EQ(at + 1, sections[0].payload + sections[0].length);
    // Sections 2 and 3: the volume, the recording flag.
    ASSERT_EQ(sections[1].length, 8u);
    EXPECT_DOUBLE_EQ(doubleAt(bytes, sections[1].payload), 0.25);
    ASSERT_EQ(sections[2].length, 1u);
    EXPECT_EQ(bytes[sections[2].payload], 1);
    // Section 4: the sound's length, then the recording's record.
    EXPECT_EQ(longAt(bytes, sections[3].payload), 1800);
    EXPECT_EQ(longAt(bytes, sections[3].payload + 4), KSoundHiliteMedia::classRecord->getClassID());

    StylusTextPtr read(new StylusText());
    ASSERT_EQ(readStream(*read, bytes), 0);
    EXPECT_EQ(read->getType(), TextType);
    EXPECT_EQ(read->getPlainText(), "Once upon\ra time");
    EXPECT_EQ(read->getTextBlock().getLineCount(), 2);
    EXPECT_EQ(read->getBounds(), text->getBounds());
    EXPECT_EQ(read->getVoice(), "Italian");
    EXPECT_TRUE(read->isTransparent());
    EXPECT_FALSE(read->getWaitForEnd());
    EXPECT_TRUE(read->getSpeaks());
    EXPECT_EQ(read->getMarkColour(), green);
    EXPECT_EQ(read->getBackColour(), blue);
    EXPECT_FALSE(read->getMarksWords());
    EXPECT_DOUBLE_EQ(read->getVolume(), 0.25);
    EXPECT_TRUE(read->getUsesRecording());
    EXPECT_EQ(read->getRecordingDuration(), 1800);
    EXPECT_EQ(read->getRecording().getMarkerCount(), 3);
    EXPECT_EQ(read->getRecording().getSoundFile().getObjectName(), "tale.wav");
    EXPECT_EQ(streamOf(*read), bytes);

    // A reader that knows only the first three sections passes over the
    // fourth by its length.
    {
        void* copy = KMemory::allocate(bytes.size() + 1, false);
        KMemory::copy(bytes.data(), copy, bytes.size());
        KFile file;
        file.setMode(KFileModeReadBuffered);
        file.openFromRAM(copy, int32_t(bytes.size()));
        bool flag = false;
        KClassReader::readSections(file, StylusText::classRecord, { { 3, [&](int32_t) { flag = file.readBool(); } } });
        EXPECT_EQ(file.getError(), 0);
        EXPECT_TRUE(flag);
        EXPECT_EQ(file.getPosition(), int32_t(bytes.size()));
        file.close();
    }

    // A stream from before the recordings, with a volume that is not a
    // number: the missing sections keep their defaults.
    std::vector<uint8_t> twoSections(bytes.begin(), bytes.begin() + long(sections[2].payload - 8));
    twoSections[15] = 2;
    int32_t body = int32_t(twoSections.size()) - 16;
    for (int32_t i = 0; i < 4; ++i)
        twoSections[8 + size_t(i)] = uint8_t(uint32_t(body) >> (24 - 8 * i));
    putDouble(twoSections, sections[1].payload, std::nan(""));
    ASSERT_EQ(readStream(*read, twoSections), 0);
    EXPECT_DOUBLE_EQ(read->getVolume(), 0.0);
    EXPECT_FALSE(read->getUsesRecording());
    EXPECT_EQ(read->getRecordingDuration(), 0);
    EXPECT_EQ(read->getRecording().getMarkerCount(), 0);
    EXPECT_EQ(read->getPlainText(), "Once upon\ra time");
}

TEST_F(TextElementTest, TwoWordsBetweenTicksAreLitTogetherAndTheEndClearsTheMark)
{
    StylusTextPtr text = makeText("Hello big world");
    tape->addElement(*text);
    scriptWords({ { 1, 0 }, { 7, 0 }, { 11, 900 } });
    tape->startPlaying(0);
    tick();
    ASSERT_NE(text->getSpeech(), nullptr);
    ASSERT_EQ(engine.script->requests.size(), 1u);
    // The voice is given the text through the exceptions, which end it
    // with a blank.
    EXPECT_EQ(engine.script->requests[0].text, "Hello big world ");
    EXPECT_TRUE(words.words.empty());

    // "Hello" and "big" came before the tick drew either.
    tick();
    ASSERT_EQ(words.words.size(), 1u);
    EXPECT_EQ(words.words[0], std::make_pair(0, 9));
    EXPECT_EQ(text->getFirstMark(), 0);
    KTextBlockObject* shown = text->getTextObject();
    ASSERT_NE(shown, nullptr);
    expectColourOnlyIn(kYellow, shown->getCharacterBoxes(0, 9, text->getBounds()));

    engine.script->positionMs = 900;
    tick();
    ASSERT_EQ(words.words.size(), 2u);
    EXPECT_EQ(words.words[1], std::make_pair(10, 5));
    expectColourOnlyIn(kYellow, shown->getCharacterBoxes(10, 5, text->getBounds()));

    // The voice ends: its last word stays lit a moment before the text
    // lets the tape go.
    engine.script->done = true;
    tick();
    EXPECT_EQ(tape->getPlayingObject(), text.get());
    EXPECT_GT(countColour(*page, kYellow), 0);
    int32_t held = 1 + ticksHeld(*text);
    EXPECT_GE(held * Tape::kDefaultPlayInterval, StylusText::kLastWordMs - Tape::kDefaultPlayInterval);
    EXPECT_LE(held * Tape::kDefaultPlayInterval, StylusText::kLastWordMs + Tape::kDefaultPlayInterval);
    ASSERT_EQ(words.words.size(), 3u);
    EXPECT_EQ(words.words[2].second, 0);
    EXPECT_EQ(countColour(*page, kYellow), 0);
    EXPECT_GT(countColour(*page, kWhite), 0);
    // The element let go of its medium.
    EXPECT_EQ(text->getSpeech(), nullptr);
    EXPECT_EQ(text->getTextObject(), nullptr);
}

TEST_F(TextElementTest, TheMarkOfASecondLineLandsOnItsOwnCharacters)
{
    // Positions count one for the break between the lines, as the text
    // given to the voice does.
    StylusTextPtr text = makeText("Red fox\rran far");
    tape->addElement(*text);
    scriptWords({ { 9, 0 } });
    tape->startPlaying(0);
    tick();
    tick();
    ASSERT_EQ(words.words.size(), 1u);
    auto [start, length] = words.words[0];
    EXPECT_EQ(text->getTextBlock().getPlainText(start, length), "ran");
    EXPECT_EQ(text->getTextBlock().getLineAtCharPosition(start), 1);
    std::vector<KWideRectangle> marked = text->getTextObject()->getCharacterBoxes(8, 3, text->getBounds());
    expectColourOnlyIn(kYellow, marked);
    // The mark lies on the second line, below the first one.
    std::vector<KWideRectangle> first = text->getTextObject()->getCharacterBoxes(0, 7, text->getBounds());
    ASSERT_EQ(first.size(), 1u);
    ASSERT_EQ(marked.size(), 1u);
    EXPECT_GT(marked[0].y, first[0].y + first[0].height / 2);
    EXPECT_EQ(marked[0].x, first[0].x);
}

TEST_F(TextElementTest, EventsOfOtherMediaAreIgnoredAndMinusOneClearsTheMark)
{
    StylusTextPtr text = makeText("one two three");
    tape->addElement(*text);
    tape->startPlaying(0);
    tick();
    KExtendedSpeech* own = text->getSpeech();
    ASSERT_NE(own, nullptr);

    KSpeechPtr stranger(new KSpeech());
    EXPECT_EQ(sendWord(*text, stranger.get(), "Speech", 4, 3), 0);
    EXPECT_EQ(sendWord(*text, nullptr, "Speech", 4, 3), 0);
    EXPECT_FALSE(text->isWordPending());
    // Its own medium's events, of either kind, are taken.
    EXPECT_EQ(sendWord(*text, own, "Movie", 4, 3), 1);
    EXPECT_FALSE(text->isWordPending());
    EXPECT_EQ(sendWord(*text, own, "SoundHilite", 4, 3), 1);
    EXPECT_TRUE(text->isWordPending());
    tick();
    ASSERT_EQ(words.words.size(), 1u);
    EXPECT_EQ(words.words[0], std::make_pair(4, 3));
    EXPECT_GT(countColour(*page, kYellow), 0);

    EXPECT_EQ(sendWord(*text, own, "Speech", -1, -1), 1);
    tick();
    ASSERT_EQ(words.words.size(), 2u);
    EXPECT_EQ(words.words[1].second, 0);
    EXPECT_EQ(countColour(*page, kYellow), 0);
    EXPECT_EQ(tape->getPlayingObject(), text.get());
}

TEST_F(TextElementTest, WithoutAnEngineTheTextIsShownAndPasses)
{
    manager->closeMediaSupport();
    KFakeSpeechEngine mute;
    mute.voiceList.clear();
    KSpeechSupport::setEngine(&mute);
    StylusTextPtr text = makeText("Silent words");
    text->setTransparent(true);
    tape->addElement(*new ProbeElement(StrokeType));
    tape->addElement(*text);
    tape->addElement(*new ProbeElement(StrokeType));
    tape->startPlaying(0);
    tick();
    fillPage(kBlue);
    tick();
    EXPECT_EQ(tape->getPlayingObject(), nullptr);
    EXPECT_EQ(tape->getPlayIndex(), 2);
    EXPECT_EQ(words.speechEngineChecks, 1);
    EXPECT_FALSE(text->keepsSavedPage());
    // The letters are on the page, over the page that shows through.
    EXPECT_GT(countColour(*page, 0x000000), 0);
    EXPECT_EQ(countColour(*page, kWhite), 0);
    KSpeechSupport::setEngine(&engine);
}

TEST_F(TextElementTest, ATransparentTextKeepsThePageUnderItOnlyWhileItHoldsTheTape)
{
    StylusTextPtr passing = makeText("Gone", KGraphicRectangle(10, 10, 60, 30));
    passing->setTransparent(true);
    passing->setWaitForEnd(false);
    StylusTextPtr waiting = makeText("Stay here", KGraphicRectangle(10, 50, 140, 40));
    waiting->setTransparent(true);
    tape->addElement(*new ProbeElement(StrokeType));
    tape->addElement(*passing);
    tape->addElement(*waiting);
    scriptWords({ { 1, 0 } });
    tape->startPlaying(0);
    tick();
    fillPage(kBlue);
    tick();
    EXPECT_FALSE(passing->keepsSavedPage());
    EXPECT_EQ(tape->getPlayIndex(), 2);
    tick();
    EXPECT_TRUE(waiting->keepsSavedPage());
    tick();
    ASSERT_FALSE(words.words.empty());
    // The mark is painted over the kept page, which shows around it.
    EXPECT_GT(countColour(*page, kYellow), 0);
    EXPECT_EQ(countColour(*page, kWhite), 0);
    EXPECT_EQ(pixel(*page, 148, 88), kBlue);
    engine.script->done = true;
    ticksHeld(*waiting);
    EXPECT_FALSE(waiting->keepsSavedPage());
    EXPECT_EQ(countColour(*page, kYellow), 0);
}

TEST_F(TextElementTest, ARecordingLightsItsWordsByTheSoundsPositionAndWinsOverTheVoice)
{
    StylusTextPtr text = makeText("one two three");
    text->setUsesRecording(true);
    text->setRecording(*makeRecording(soundFile("reading.wav")));
    text->setVolume(0.5);
    tape->addElement(*text);
    tape->startPlaying(0);
    tick();
    EXPECT_EQ(text->getSpeech(), nullptr);
    ASSERT_NE(text->getRecordingPlayer(), nullptr);
    EXPECT_EQ(sounds->openedPath, (folder / "reading.wav").string());
    EXPECT_DOUBLE_EQ(sounds->volume, 0.5);
    EXPECT_TRUE(engine.script->requests.empty());

    KFakeSound::advance(*sounds, 0.1);
    tick();
    ASSERT_EQ(words.words.size(), 1u);
    EXPECT_EQ(words.words[0], std::make_pair(0, 3));
    // The clock alone does not move the words: the sound's position does.
    layer.advance(2000);
    tick();
    EXPECT_EQ(words.words.size(), 1u);
    KFakeSound::advance(*sounds, 1.0);
    tick();
    ASSERT_EQ(words.words.size(), 2u);
    EXPECT_EQ(words.words[1], std::make_pair(8, 5));
    expectColourOnlyIn(kYellow, text->getTextObject()->getCharacterBoxes(8, 5, text->getBounds()));

    KFakeSound::advance(*sounds, 1.0);
    layer.advance(1000);
    EXPECT_EQ(ticksHeld(*text), 1);
    ASSERT_EQ(words.words.size(), 3u);
    EXPECT_EQ(words.words[2].second, 0);
    EXPECT_EQ(text->getRecordingPlayer(), nullptr);
    EXPECT_EQ(countColour(*page, kYellow), 0);
}

TEST_F(TextElementTest, ARecordingWhoseSoundIsGoneOrUndecodableLetsTheTextPass)
{
    for (const std::filesystem::path& sound : { folder / "gone.wav", soundFile("broken.bad") }) {
        StylusTextPtr text = makeText("one two three");
        text->setUsesRecording(true);
        text->setRecording(*makeRecording(sound));
        TapePtr own = makeTape();
        own->addElement(*text);
        own->startPlaying(0);
        own->handleTimer();
        EXPECT_EQ(own->getPlayingObject(), nullptr) << sound;
        EXPECT_EQ(text->getRecordingPlayer(), nullptr);
        own->stopPlaying();
    }
}

TEST_F(TextElementTest, TheRecordingsSoundIsAMediaFileOfTheProject)
{
    StylusTextPtr text = makeText("one two three");
    text->setRecording(*makeRecording(folder / "voice.wav"));
    EXPECT_TRUE(text->usesMediaNamed("voice.wav"));
    EXPECT_FALSE(text->usesMediaNamed("other.wav"));
    KStringBagPtr names(new KStringBag());
    text->addMediaName(*names);
    text->addMediaName(*names);
    EXPECT_EQ(names->getSize(), 1);

    EXPECT_FALSE(text->replaceMedia(referenceTo(folder / "other.wav"), referenceTo(folder / "new.wav")));
    EXPECT_TRUE(text->replaceMedia(referenceTo(folder / "voice.wav"), referenceTo(folder / "new.wav")));
    EXPECT_EQ(text->getRecording().getSoundFile().getObjectName(), "new.wav");

    // A missing sound is looked for by name, then asked for.
    std::filesystem::create_directories(folder / "elsewhere");
    std::ofstream(folder / "elsewhere" / "new.wav") << "RIFF";
    KDirectory elsewhere = mediatest::folderAt(folder / "elsewhere");
    EXPECT_FALSE(text->findMissingMedia(elsewhere, nullptr));
    EXPECT_EQ(text->getRecording().getSoundFile().getPath(), mediatest::pathOf(folder / "elsewhere" / "new.wav"));
    text->replaceMedia(text->getRecording().getSoundFile(), referenceTo(folder / "lost.wav"));
    KDirectory empty = mediatest::folderAt(folder.root);
    EXPECT_TRUE(text->findMissingMedia(empty, nullptr));
    EXPECT_EQ(words.missingQuestions, 1);
}

TEST_F(TextElementTest, DrawingScalesTheLayoutOfTheBoundsAndEditingHidesIt)
{
    StylusTextPtr text = makeText("A long line of words that wraps", KGraphicRectangle(20, 20, 80, 60));
    text->setTextBlock(KTextBlock(KString("A long line of words that wraps"), KTextStyle()));
    text->setBackColour(rgb(kBlue));
    tape->addElement(*text);
    fillPage(0x000000);
    text->drawOnPage();
    // The background fills the bounds and nothing else.
    for (int32_t y = 0; y < kPageHeight; ++y) {
        for (int32_t x = 0; x < kPageWidth; ++x) {
            if (pixel(*page, x, y) == kBlue) {
                EXPECT_TRUE(text->getBounds().contains(KGraphicPoint(int16_t(x), int16_t(y))));
            }
        }
    }
    EXPECT_GT(countColour(*page, kBlue), 0);
    EXPECT_EQ(pixel(*page, 19, 19), 0u);
    EXPECT_EQ(pixel(*page, 100, 80), 0u);
    KTextBlockObjectPtr laid = text->makeTextObject();
    EXPECT_EQ(laid->getWidth(), 80);
    EXPECT_GT(laid->getLineCount(), 1);

    // Scaling changes the bounds about the centre and the font sizes.
    text->scale(2.0, 3.0);
    EXPECT_EQ(text->getBounds(), KGraphicRectangle(-20, -40, 160, 180));
    EXPECT_DOUBLE_EQ(text->getTextBlock().getStyleAt(0).getFont().getSize(), 48.0);
    text->scaleBetween(KGraphicRectangle(0, 0, 160, 180), KGraphicRectangle(0, 0, 80, 90));
    EXPECT_DOUBLE_EQ(text->getTextBlock().getStyleAt(0).getFont().getSize(), 24.0);
    text->moveBy(5, -5);
    EXPECT_EQ(text->getBounds(), KGraphicRectangle(25, 0, 80, 90));

    // While it is edited in place the element leaves the page alone.
    fillPage(0x000000);
    text->setEdited(true);
    text->drawOnPage();
    EXPECT_EQ(countColour(*page, kBlue), 0);
    text->setEdited(false);
    text->drawOnPage();
    EXPECT_GT(countColour(*page, kBlue), 0);
}

TEST_F(TextElementTest, AnElementThatGoesDetachesFromItsMedium)
{
    StylusTextPtr text = makeText("Bye now");
    tape->addElement(*text);
    tape->startPlaying(0);
    tick();
    KExtendedSpeechPtr held(text->getSpeech());
    ASSERT_TRUE(held);
    EXPECT_EQ(held->targetCount(), 1);
    tape->stopPlaying();
    EXPECT_EQ(held->targetCount(), 0);
    EXPECT_FALSE(held->isPlaying());

    // Playing again after a pause starts over with the medium stopped.
    tape->startPlaying(0);
    tick();
    tape->pausePlaying();
    tape->resumePlaying();
    int32_t cancels = engine.script->cancels;
    tick();
    EXPECT_GT(engine.script->cancels, cancels);
    EXPECT_EQ(engine.script->requests.size(), 3u);
    tape->stopPlaying();

    // An element freed while its medium still reads leaves it no receiver.
    TapePtr own = makeTape();
    StylusTextPtr other = makeText("Still talking");
    other->setWaitForEnd(false);
    own->addElement(*other);
    own->startPlaying(0);
    own->handleTimer();
    held = other->getSpeech();
    ASSERT_TRUE(held);
    EXPECT_EQ(own->getPlayingObject(), nullptr);
    EXPECT_EQ(held->targetCount(), 1);
    own.clear();
    other.clear();
    EXPECT_EQ(held->targetCount(), 0);
}
