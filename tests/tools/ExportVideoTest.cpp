// Stories exported as videos: their length against the traced play, their
// frames against the render command at the same moments, their waits.

#include "tests/kernel/FileTestSupport.h"
#include "tests/project/ProjectTestSupport.h"

#include "app/AppClasses.h"
#include "graphics/KImage.h"
#include "kernel/KTextCodec.h"
#include "kmultimedia/KVideoEncoder.h"
#include "tools/make-sample-story/SampleStory.h"
#include "tools/taleloom-tool/ExportVideoCommand.h"
#include "tools/taleloom-tool/RenderCommand.h"
#include "tools/taleloom-tool/TaleloomTool.h"
#include "tools/taleloom-tool/TraceCommand.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>

using namespace filetest;
using namespace projecttest;
namespace fs = std::filesystem;

namespace {

// The mean difference of the colour channels of two pictures of one size.
// The video is lossy and its colours go through YUV and back: a few units
// apart is the same picture, a different page is far more.
double meanDifference(const std::vector<uint32_t>& a, const std::vector<uint32_t>& b)
{
    if (a.size() != b.size() || a.empty())
        return 1e9;
    double sum = 0.0;
    for (size_t i = 0; i < a.size(); ++i) {
        for (int shift : { 0, 8, 16 })
            sum += std::abs(int32_t((a[i] >> shift) & 0xFF) - int32_t((b[i] >> shift) & 0xFF));
    }
    return sum / double(a.size() * 3);
}

class ExportVideo : public ::testing::Test {
protected:
    void SetUp() override
    {
        registerDocumentClasses();
        std::string reason;
        ASSERT_TRUE(SampleStory::write(folder.path(), reason)) << reason;
        sample = folder.path() + "/" + SampleStory::kProjectName + "/" + SampleStory::kProjectName + ".TPD";
        ASSERT_TRUE(traceStory(sample, {}, kDefaultTraceLimitMs, trace, reason, warnings)) << reason;
    }
    const TraceElement& traced(int32_t type) const
    {
        for (const TraceElement& element : trace.elements) {
            if (element.type == type)
                return element;
        }
        static TraceElement none;
        return none;
    }
    std::vector<uint32_t> rendered(const std::vector<std::string>& arguments)
    {
        std::ostringstream out, err;
        std::vector<std::string> command { "render", sample };
        command.insert(command.end(), arguments.begin(), arguments.end());
        command.insert(command.end(), { "-o", folder.file("page.png") });
        EXPECT_EQ(runTaleloomTool(command, out, err), 0) << err.str();
        KImagePtr image(new KImage());
        EXPECT_TRUE(image->createFromPath(KTextCodec::fromUtf8(folder.file("page.png"))));
        return pixelsOf(image->getDevice());
    }
    KVideoFrame frameAt(const std::string& video, int64_t timeMs)
    {
        KVideoFrame frame;
        std::string reason;
        EXPECT_TRUE(knsReadVideoFrame(video, timeMs, frame, reason)) << reason;
        return frame;
    }

    TempFolder folder;
    std::string sample;
    TraceResult trace;
    std::string reason;
    std::vector<std::string> warnings;
};

} // namespace

TEST_F(ExportVideo, TheVideoLastsThePlayWithItsWaitAndShowsWhatThePlayerShowsThen)
{
    std::string video = folder.file("story.mp4");
    VideoExportOptions options;
    VideoExportReport report;
    ASSERT_TRUE(exportVideo(sample, video, options, report, reason, warnings)) << reason;
    EXPECT_EQ(report.width, 640);
    EXPECT_EQ(report.height, 480);

    // The play as traced, and the wait for the user held for its 2 s.
    const TraceElement& wait = traced(WaitType);
    ASSERT_GE(wait.startMs, 0);
    int64_t expected = wait.startMs + options.waitMs;
    int64_t frame = 1000 / options.framesPerSecond;
    KVideoFrame during = frameAt(video, wait.startMs + 1000);
    EXPECT_NEAR(double(during.durationMs), double(expected), double(frame + trace.tickMs));

    // In the wait the page stands as at the end of the story, no word lit.
    EXPECT_LT(meanDifference(during.pixels, rendered({})), 6.0);
    // While the second word is heard, it is lit as the player lights it.
    ASSERT_GE(trace.words.size(), 2u);
    const TraceWord& word = trace.words[1];
    int32_t text = word.element;
    KVideoFrame lit = frameAt(video, word.timeMs + frame);
    std::string mark
        = std::to_string(text) + ":" + std::to_string(word.wordStart) + ":" + std::to_string(word.wordLength);
    std::vector<uint32_t> expectedLit = rendered({ "--position", std::to_string(text + 1), "--lit", mark });
    std::vector<uint32_t> unlit = rendered({ "--position", std::to_string(text + 1) });
    EXPECT_LT(meanDifference(lit.pixels, expectedLit), 6.0);
    EXPECT_LT(meanDifference(lit.pixels, expectedLit), meanDifference(lit.pixels, unlit));

    // A shorter wait makes a shorter video, by as much.
    options.waitMs = 500;
    options.width = 321;
    options.height = 240;
    ASSERT_TRUE(exportVideo(sample, video, options, report, reason, warnings)) << reason;
    EXPECT_EQ(report.width, 320);
    KVideoFrame shorter = frameAt(video, 1000);
    EXPECT_NEAR(double(shorter.durationMs), double(wait.startMs + 500), double(frame + trace.tickMs));
    EXPECT_EQ(shorter.width, 320);
}

TEST_F(ExportVideo, TheSameStoryMakesTheSameFramesAndAFailedExportLeavesNoFile)
{
    VideoExportOptions options;
    options.width = 160;
    options.height = 120;
    options.webm = true;
    VideoExportReport report;
    ASSERT_TRUE(exportVideo(sample, folder.file("a.webm"), options, report, reason, warnings)) << reason;
    ASSERT_TRUE(exportVideo(sample, folder.file("b.webm"), options, report, reason, warnings)) << reason;
    EXPECT_EQ(frameAt(folder.file("a.webm"), 9600).pixels, frameAt(folder.file("b.webm"), 9600).pixels);

    std::ostringstream out, err;
    EXPECT_EQ(runTaleloomTool({ "export-video", sample, "-o", folder.file("nowhere/story.mp4") }, out, err), 1);
    EXPECT_NE(err.str().find("cannot be written"), std::string::npos) << err.str();
    int32_t told = 0;
    EXPECT_FALSE(exportVideo(sample, folder.file("stopped.mp4"), options, report, reason, warnings,
                             [&](int32_t) { return ++told < 10; }));
    EXPECT_FALSE(fs::exists(folder.file("stopped.mp4")));
    EXPECT_FALSE(fs::exists(folder.file("stopped.mp4.part")));
    EXPECT_EQ(runTaleloomTool({ "export-video", sample, "--size", "0x10", "-o", folder.file("x.mp4") }, out, err), 2);
}
