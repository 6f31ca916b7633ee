// taleloom-tool trace: a story played on the tape's tick without a display
// or a sound card, with scripted clicks and keys.

#include "tests/kernel/FileTestSupport.h"

#include "app/AppClasses.h"
#include "kernel/KFileReference.h"
#include "kmultimedia/KWavFormat.h"
#include "project/StylusProject.h"
#include "tape/StylusPause.h"
#include "tape/StylusSound.h"
#include "tape/StylusSpeech.h"
#include "tape/Tape.h"
#include "tape/WaitObject.h"
#include "tools/taleloom-tool/TaleloomTool.h"
#include "tools/taleloom-tool/TraceCommand.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

using namespace filetest;

namespace {

// Silence of the length, 16-bit mono at 22050 Hz.
void writeSilence(const std::string& path, int32_t milliseconds)
{
    KWavFormat format;
    uint32_t bytes = uint32_t(int64_t(format.bytesPerSecond()) * milliseconds / 1000);
    auto header = format.header(bytes);
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(header.data()), std::streamsize(header.size()));
    std::vector<char> zeros(bytes, 0);
    out.write(zeros.data(), std::streamsize(zeros.size()));
}

class TraceCommand : public ::testing::Test {
protected:
    void SetUp() override
    {
        registerDocumentClasses();
        std::filesystem::create_directories(folder.file("story/Media"));
    }

    // Saves the story with the elements; returns the document's path.
    std::string save(const std::vector<TapeObjectPtr>& elements)
    {
        StylusProjectPtr story(new StylusProject());
        story->getTape()->setPageSize(KGraphicSize(160, 120));
        for (const TapeObjectPtr& element : elements)
            story->getTape()->addElement(*element);
        EXPECT_TRUE(story->save(KFileReference(folder.pathOf("story/story.TPD"))));
        return folder.file("story/story.TPD");
    }
    TraceResult trace(const std::string& path, const std::vector<std::string>& inputs = {})
    {
        std::vector<TraceInput> parsed;
        for (const std::string& text : inputs) {
            TraceInput input;
            EXPECT_TRUE(parseTraceInput(text, input)) << text;
            parsed.push_back(input);
        }
        TraceResult result;
        std::string reason;
        warnings.clear();
        EXPECT_TRUE(traceStory(path, parsed, kDefaultTraceLimitMs, result, reason, warnings)) << reason;
        return result;
    }
    static TapeObjectPtr pause(int32_t milliseconds)
    {
        StylusPausePtr made(new StylusPause());
        made->setDuration(milliseconds);
        return made;
    }
    static TapeObjectPtr wait(bool user)
    {
        WaitObjectPtr made(new WaitObject());
        made->setWaitForUser(user);
        return made;
    }
    TapeObjectPtr sound(const std::string& name, int32_t milliseconds)
    {
        writeSilence(folder.file("story/Media/" + name), milliseconds);
        StylusSoundPtr made(new StylusSound());
        made->setFile(KFileReference(folder.pathOf("story/Media/" + name)));
        return made;
    }

    TempFolder folder;
    std::vector<std::string> warnings;
};

} // namespace

TEST_F(TraceCommand, PausesSoundsAndWaitsTakeTheirTimeOnTheTapesTick)
{
    TraceResult result
        = trace(save({ pause(2000), wait(false), sound("tone.wav", 1000), wait(true), pause(0) }), { "click@4000" });
    EXPECT_TRUE(result.finished);
    EXPECT_EQ(result.tickMs, 20);
    ASSERT_EQ(result.elements.size(), 5u);
    for (size_t i = 0; i < result.elements.size(); ++i)
        EXPECT_EQ(result.elements[i].index, int32_t(i));
    const TraceElement& held = result.elements[0];
    EXPECT_EQ(held.startMs, 0);
    EXPECT_GE(held.endMs - held.startMs, 2000);
    EXPECT_LE(held.endMs - held.startMs, 2040);
    // A wait with nothing to wait for costs one tick.
    EXPECT_EQ(result.elements[1].endMs - result.elements[1].startMs, 20);
    // The sound holds the tape for its length.
    const TraceElement& tone = result.elements[2];
    EXPECT_EQ(tone.type, SoundType);
    EXPECT_NEAR(tone.endMs - tone.startMs, 1000, 60);
    // The wait for the user ends right after the click.
    const TraceElement& click = result.elements[3];
    EXPECT_LT(click.startMs, 4000);
    EXPECT_GE(click.endMs, 4000);
    EXPECT_LE(click.endMs, 4040);
    EXPECT_EQ(result.inputs[0].deliveredMs, 4000);
    // A pause of nothing still costs one tick.
    EXPECT_EQ(result.elements[4].endMs - result.elements[4].startMs, 20);
    EXPECT_TRUE(warnings.empty());
}

TEST_F(TraceCommand, KeysAnswerWaitsEscapeStopsAndWithoutInputTheLimitEndsIt)
{
    std::string story = save({ wait(true), pause(100), wait(true), pause(100) });
    TraceResult keyed = trace(story, { "key:a@300", "key:space@1000" });
    ASSERT_EQ(keyed.elements.size(), 4u);
    EXPECT_EQ(keyed.elements[0].endMs, 300);
    EXPECT_EQ(keyed.elements[2].endMs, 1000);
    EXPECT_TRUE(keyed.finished);

    // Escape is never taken by a wait: it stops the play.
    TraceResult stopped = trace(story, { "key:escape@200", "key:a@900" });
    ASSERT_EQ(stopped.elements.size(), 1u);
    EXPECT_EQ(stopped.elements[0].endMs, -1);
    EXPECT_EQ(stopped.inputs[1].deliveredMs, -1);

    std::vector<TraceInput> none;
    TraceResult waited;
    std::string reason;
    ASSERT_TRUE(traceStory(story, none, 1000, waited, reason, warnings));
    EXPECT_FALSE(waited.finished);
    EXPECT_EQ(waited.endMs, 1000);
    EXPECT_EQ(waited.elements.size(), 1u);
}

TEST_F(TraceCommand, ASpeechHoldsTheTapeWhileItsVoiceSpeaksOrPassesWithAWarning)
{
    StylusSpeechPtr speech(new StylusSpeech());
    speech->setText("One two three four five six seven eight.");
    TraceResult result = trace(save({ speech, pause(0) }));
    ASSERT_EQ(result.elements.size(), 2u);
    int32_t spoken = result.elements[0].endMs - result.elements[0].startMs;
    if (warnings.empty()) {
        EXPECT_GT(spoken, 1000);
        EXPECT_LT(spoken, 10000);
    } else {
        EXPECT_EQ(spoken, 0);
    }
    // The same story gives the same trace.
    EXPECT_EQ(traceJson(trace(save({ speech, pause(0) }))), traceJson(result));
}

TEST_F(TraceCommand, TheCommandWritesJsonAndRefusesWhatItCannotUse)
{
    std::string story = save({ wait(true), sound("bell.wav", 200) });
    std::string output = folder.file("trace.json");
    std::ostringstream out;
    std::ostringstream err;
    std::vector<std::string> good { "trace", story, "-o", output, "--input", "click@100" };
    ASSERT_EQ(runTaleloomTool(good, out, err), 0) << err.str();
    std::ifstream in(output);
    std::string json((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::string compact;
    for (char c : json) {
        if (c != ' ' && c != '\n')
            compact += c;
    }
    EXPECT_NE(compact.find("\"tick\":20"), std::string::npos) << compact;
    // The click ends the wait as it comes; the next tick starts the sound.
    EXPECT_NE(compact.find("{\"index\":0,\"type\":1,\"kind\":\"Wait\",\"start\":0,\"end\":100}"), std::string::npos)
        << compact;
    EXPECT_NE(compact.find("{\"index\":1,\"type\":6,\"kind\":\"Sound\",\"start\":120"), std::string::npos) << compact;
    EXPECT_NE(compact.find("\"kind\":\"Sound\""), std::string::npos);
    EXPECT_NE(compact.find("\"words\":[]"), std::string::npos);
    EXPECT_NE(compact.find("{\"input\":\"click\",\"time\":100,\"delivered\":100}"), std::string::npos);

    for (std::vector<std::string> bad : std::vector<std::vector<std::string>> {
             { "trace", story },
             { "trace", story, "-o", output, "--input", "click" },
             { "trace", story, "-o", output, "--input", "tap@10" },
             { "trace", story, "-o", output, "--input", "key:nothing@10" },
             { "trace", story, "-o", output, "--limit", "-5" },
         })
        EXPECT_EQ(runTaleloomTool(bad, out, err), 2) << bad.back();
    std::vector<std::string> missing { "trace", folder.file("none.TPD"), "-o", output };
    EXPECT_EQ(runTaleloomTool(missing, out, err), 1);
}
