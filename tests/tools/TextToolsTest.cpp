// taleloom-tool on stories with texts: the words a play lights, a page
// with a word lit, and what info tells of a text.

#include "tests/kernel/FileTestSupport.h"
#include "tests/project/ProjectTestSupport.h"

#include "app/AppClasses.h"
#include "graphics/KImage.h"
#include "kernel/KFileReference.h"
#include "kernel/KTextCodec.h"
#include "kmultimedia/KSoundHiliteMarker.h"
#include "kmultimedia/KSoundHiliteMedia.h"
#include "kmultimedia/KWavWriter.h"
#include "project/StylusProject.h"
#include "tape/StylusPause.h"
#include "tape/StylusText.h"
#include "tape/Tape.h"
#include "tools/taleloom-tool/RenderCommand.h"
#include "tools/taleloom-tool/TaleloomTool.h"
#include "tools/taleloom-tool/TraceCommand.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

using namespace filetest;
using namespace projecttest;

namespace {

constexpr uint32_t kYellow = 0xFFFF00;

// Silence of the length, 16-bit mono at 22050 Hz.
void writeSilence(const std::string& path, int32_t milliseconds)
{
    KWavFormat format;
    std::vector<int16_t> zeros(size_t(int64_t(format.sampleRate) * milliseconds / 1000), 0);
    KWavWriter writer;
    ASSERT_EQ(writer.open(path, format), KWavWriter::Written);
    writer.write(zeros.data(), zeros.size() * sizeof(int16_t));
    ASSERT_EQ(writer.close(), KWavWriter::Written);
}

class TextTools : public ::testing::Test {
protected:
    void SetUp() override
    {
        registerDocumentClasses();
        std::filesystem::create_directories(folder.file("story/Media"));
    }

    StylusTextPtr text(const char* words, const KGraphicRectangle& bounds)
    {
        StylusTextPtr made(new StylusText());
        made->setTextBlock(KTextBlock(KString(words), KTextStyle(KFont("Sans", 14.0), KColor(KColor::Black))));
        made->setBounds(bounds);
        return made;
    }
    // A text read from a recording of a second: its three words begin at
    // 0, 300 and 600 ms.
    StylusTextPtr recordedText()
    {
        writeSilence(folder.file("story/Media/reading.wav"), 1000);
        StylusTextPtr made = text("one two three", KGraphicRectangle(10, 10, 140, 40));
        made->setSpeaks(false);
        made->setUsesRecording(true);
        KSoundHiliteMediaPtr recording(new KSoundHiliteMedia());
        recording->setText("one two three");
        recording->setSoundFile(KFileReference(folder.pathOf("story/Media/reading.wav")));
        recording->addMarker(*new KSoundHiliteMarker(0, 0, "one"));
        recording->addMarker(*new KSoundHiliteMarker(300, 4, "two"));
        recording->addMarker(*new KSoundHiliteMarker(600, 8, "three"));
        made->setRecording(*recording);
        made->setRecordingDuration(1000);
        return made;
    }
    std::string save(const std::vector<TapeObjectPtr>& elements)
    {
        StylusProjectPtr story(new StylusProject());
        story->getTape()->setPageSize(KGraphicSize(160, 120));
        for (const TapeObjectPtr& element : elements)
            story->getTape()->addElement(*element);
        EXPECT_TRUE(story->save(KFileReference(folder.pathOf("story/story.TPD"))));
        return folder.file("story/story.TPD");
    }
    int run(const std::vector<std::string>& arguments)
    {
        out.str("");
        err.str("");
        return runTaleloomTool(arguments, out, err);
    }
    int64_t yellowIn(const std::string& png, const KGraphicRectangle& area)
    {
        KImagePtr image(new KImage());
        EXPECT_TRUE(image->createFromPath(KTextCodec::fromUtf8(png)));
        int64_t count = 0;
        int64_t outside = 0;
        std::vector<uint32_t> pixels = pixelsOf(image->getDevice());
        int32_t width = image->getSize().width;
        for (size_t i = 0; i < pixels.size(); ++i) {
            if (pixels[i] != kYellow)
                continue;
            KGraphicPoint p(int16_t(int32_t(i) % width), int16_t(int32_t(i) / width));
            (area.contains(p) ? count : outside) += 1;
        }
        EXPECT_EQ(outside, 0);
        return count;
    }

    TempFolder folder;
    std::ostringstream out;
    std::ostringstream err;
};

} // namespace

TEST_F(TextTools, TheTraceTellsTheWordsOfARecordingInOrderAndTheMarkCleared)
{
    StylusPausePtr after(new StylusPause());
    after->setDuration(0);
    std::string story = save({ recordedText(), after });
    TraceResult result;
    std::string reason;
    std::vector<std::string> warnings;
    ASSERT_TRUE(traceStory(story, {}, kDefaultTraceLimitMs, result, reason, warnings)) << reason;
    EXPECT_TRUE(warnings.empty());
    ASSERT_EQ(result.elements.size(), 2u);
    EXPECT_EQ(result.elements[0].type, TextType);
    ASSERT_EQ(result.words.size(), 3u);
    const int32_t starts[] = { 0, 4, 8 };
    const int32_t lengths[] = { 3, 3, 5 };
    const int32_t heard[] = { 0, 300, 600 };
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(result.words[i].element, 0);
        EXPECT_EQ(result.words[i].wordStart, starts[i]);
        EXPECT_EQ(result.words[i].wordLength, lengths[i]);
        // Each word lights on the first tick after its time in the sound.
        EXPECT_GT(result.words[i].timeMs, heard[i]);
        EXPECT_LE(result.words[i].timeMs, heard[i] + 2 * result.tickMs);
    }
    ASSERT_EQ(result.cleared.size(), 1u);
    EXPECT_EQ(result.cleared[0].element, 0);
    EXPECT_GE(result.cleared[0].timeMs, 1000);
    EXPECT_EQ(result.cleared[0].timeMs, result.elements[0].endMs);

    std::string json = traceJson(result);
    std::string compact;
    for (char c : json) {
        if (c != ' ' && c != '\n')
            compact += c;
    }
    EXPECT_NE(compact.find("\"kind\":\"Text\""), std::string::npos);
    EXPECT_NE(compact.find("{\"element\":0,\"wordStart\":4,\"wordLength\":3,"), std::string::npos) << compact;
    EXPECT_NE(compact.find("\"cleared\":[{\"element\":0,\"time\":" + std::to_string(result.cleared[0].timeMs) + "}]"),
              std::string::npos)
        << compact;
}

TEST_F(TextTools, TheTraceOfASpokenTextLightsItsWordsInOrderOrWarns)
{
    StylusTextPtr spoken = text("One two three four.", KGraphicRectangle(10, 10, 140, 40));
    TraceResult result;
    std::string reason;
    std::vector<std::string> warnings;
    ASSERT_TRUE(traceStory(save({ spoken }), {}, kDefaultTraceLimitMs, result, reason, warnings)) << reason;
    if (!warnings.empty()) {
        // No voice on this machine: the text is shown and passes.
        EXPECT_TRUE(result.words.empty());
        return;
    }
    ASSERT_GE(result.words.size(), 2u);
    for (size_t i = 1; i < result.words.size(); ++i) {
        EXPECT_GT(result.words[i].wordStart, result.words[i - 1].wordStart);
        EXPECT_GE(result.words[i].timeMs, result.words[i - 1].timeMs);
    }
    EXPECT_EQ(result.words.front().wordStart, 0);
    ASSERT_EQ(result.cleared.size(), 1u);
    EXPECT_GE(result.cleared[0].timeMs, result.words.back().timeMs);
}

TEST_F(TextTools, RenderLightsARangeOfATextInItsMarkColour)
{
    StylusPausePtr pause(new StylusPause());
    KGraphicRectangle bounds(10, 10, 140, 40);
    std::string story = save({ pause, text("one two three", bounds) });
    std::string png = folder.file("lit.png");
    ASSERT_EQ(run({ "render", story, "--lit", "1:4:3", "-o", png }), 0) << err.str();
    int64_t lit = yellowIn(png, bounds);
    EXPECT_GT(lit, 30);
    ASSERT_EQ(run({ "render", story, "--lit", "1:0:13", "-o", png }), 0) << err.str();
    EXPECT_GT(yellowIn(png, bounds), lit * 3);
    ASSERT_EQ(run({ "render", story, "-o", png }), 0);
    EXPECT_EQ(yellowIn(png, bounds), 0);

    // Only a text can be lit; a mark must have three numbers.
    EXPECT_EQ(run({ "render", story, "--lit", "0:0:1", "-o", png }), 1);
    EXPECT_NE(err.str().find("not a text"), std::string::npos) << err.str();
    EXPECT_EQ(run({ "render", story, "--lit", "7:0:1", "-o", png }), 1);
    for (const char* bad : { "1:4", "1:a:3", "1:4:3:2", "-1:4:3" })
        EXPECT_EQ(run({ "render", story, "--lit", bad, "-o", png }), 2) << bad;
}

TEST_F(TextTools, InfoNamesATextAndTellsWhatItSays)
{
    StylusTextPtr two = text("one two\rthree", KGraphicRectangle(10, 20, 100, 50));
    ASSERT_EQ(run({ "info", save({ two }) }), 0) << err.str();
    std::string compact;
    for (char c : out.str()) {
        if (c != ' ' && c != '\n')
            compact += c;
    }
    EXPECT_NE(compact.find("\"type\":3,\"kind\":\"Text\""), std::string::npos) << compact;
    EXPECT_NE(compact.find("\"text\":\"onetwo\\nthree\""), std::string::npos) << compact;
    EXPECT_NE(compact.find("\"bounds\":[10,20,100,50]"), std::string::npos) << compact;
    EXPECT_NE(compact.find("\"speaks\":true,\"usesRecording\":false"), std::string::npos) << compact;
}
