// The sound and speech commands of taleloom-tool, without a display or a
// sound card (the tests run with TALELOOM_AUDIO=null).

#include "tests/kmultimedia/SoundTestSupport.h"
#include "tools/taleloom-tool/TaleloomTool.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace soundtest;

namespace {

struct ToolRun {
    int status;
    std::string out;
    std::string err;
};

// The JSON without the blanks and line breaks between its tokens.
std::string compact(const std::string& json)
{
    std::string out;
    bool inString = false;
    for (size_t i = 0; i < json.size(); ++i) {
        char c = json[i];
        if (c == '"' && (i == 0 || json[i - 1] != '\\'))
            inString = !inString;
        if (inString || (c != ' ' && c != '\n'))
            out += c;
    }
    return out;
}

ToolRun tool(std::vector<std::string> arguments)
{
    std::ostringstream out;
    std::ostringstream err;
    int status = runTaleloomTool(arguments, out, err);
    return { status, compact(out.str()), err.str() };
}

} // namespace

TEST(SoundCommands, VoicesListsNamesAndTheDefault)
{
    ToolRun all = tool({ "voices" });
    ASSERT_EQ(all.status, 0) << all.err;
    EXPECT_EQ(all.out.rfind("{\"voices\":[", 0), 0u) << all.out;
    EXPECT_NE(all.out.find("\"default\":\""), std::string::npos);
    ToolRun italian = tool({ "voices", "--language", "it" });
    ASSERT_EQ(italian.status, 0);
    EXPECT_LT(italian.out.size(), all.out.size());
    EXPECT_NE(italian.out.find("Italian"), std::string::npos) << italian.out;
    EXPECT_EQ(tool({ "voices", "extra" }).status, 2);
}

TEST(SoundCommands, SpeakWritesTheAudioAndItsWords)
{
    TempFolder folder;
    std::string wav = folder.pathOf("hello.wav");
    ToolRun run = tool({ "speak", "Hello wide world", "-o", wav, "--events", "--speed", "0.7" });
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, run.out.substr(0, run.out.find("[{")) + run.out.substr(run.out.find("[{")));
    EXPECT_NE(run.out.find("{\"wordStart\":0,\"wordLength\":5,\"time\":"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("{\"wordStart\":6,\"wordLength\":4,"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("{\"wordStart\":11,\"wordLength\":5,"), std::string::npos) << run.out;
    WavSamples audio;
    ASSERT_TRUE(readWav(wav, audio));
    EXPECT_GT(audio.samples.size(), size_t(audio.rate / 2));

    EXPECT_EQ(tool({ "speak", "Hello" }).status, 2);
    EXPECT_EQ(tool({ "speak", "Hello", "-o", wav, "--speed", "3" }).status, 2);
}

TEST(SoundCommands, PlayReportsAndRendersToAFile)
{
    TempFolder folder;
    std::string error;
    std::string source = makeSound(folder, "wav", error, 0.5);
    ASSERT_FALSE(source.empty()) << error;
    std::string rendered = folder.pathOf("out.wav");
    ToolRun run = tool({ "play", source, "--balance", "-1", "--to-file", rendered, "--json" });
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("\"status\":1"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("\"finished\":true"), std::string::npos) << run.out;
    WavSamples wav;
    ASSERT_TRUE(readWav(rendered, wav));
    ASSERT_EQ(wav.channels, 2);
    EXPECT_GT(peakOf(wav, 0), 20000);
    EXPECT_LE(peakOf(wav, 1), 1);

    // In real time through the clock-keeping sink.
    ToolRun played = tool({ "play", source, "--json" });
    ASSERT_EQ(played.status, 0) << played.err;
    EXPECT_NE(played.out.find("\"duration\":0.5"), std::string::npos) << played.out;

    ToolRun missing = tool({ "play", folder.pathOf("missing.mp3"), "--json" });
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.out.find("\"status\":0"), std::string::npos);
}

TEST(SoundCommands, RecordTakesTheTestTone)
{
    TempFolder folder;
    std::string take = folder.pathOf("take.wav");
    ToolRun run = tool({ "record", "--seconds", "1", "-o", take });
    ASSERT_EQ(run.status, 0) << run.err;
    WavSamples wav;
    ASSERT_TRUE(readWav(take, wav));
    EXPECT_EQ(wav.rate, 22050);
    EXPECT_GE(wav.samples.size(), size_t(0.99 * 22050));
    EXPECT_EQ(tool({ "record", "-o", take }).status, 2);
}
