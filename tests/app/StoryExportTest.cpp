// The File menu's exports on the fake native layer: the saved story goes to
// taleloom-tool beside the program, the book lands where the chooser said,
// and a target that cannot be written is told, with nothing left behind.

#include "AppTestSupport.h"
#include "tests/kernel/FileTestSupport.h"

#include "app/FileMenu.h"
#include "app/StoryExport.h"
#include "app/StylusActions.h"
#include "app/StylusMenuBar.h"
#include "app/StylusWindow.h"
#include "kernel/KChildProcess.h"
#include "kernel/KFileReference.h"
#include "kernel/KTextCodec.h"
#include "tools/make-sample-story/SampleStory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

using namespace apptest;
namespace fs = std::filesystem;

namespace {

class StoryExportTest : public AppTest {
protected:
    void SetUp() override
    {
        AppTest::SetUp();
        setenv("TALELOOM_TOOL", TALELOOM_TOOL_PATH, 1);
        story = folder.path() + "/" + SampleStory::kProjectName + "/" + SampleStory::kProjectName + ".TPD";
    }
    // Once the program's classes are there.
    void writeSample()
    {
        std::string reason;
        ASSERT_TRUE(SampleStory::write(folder.path(), reason)) << reason;
    }
    void TearDown() override
    {
        unsetenv("TALELOOM_TOOL");
        AppTest::TearDown();
    }
    void choose(int32_t item)
    {
        StylusMenuBar& bar = *StylusMenuBar::current();
        bar.update();
        FileMenu& file = bar.getFileMenu();
        EXPECT_TRUE(
            layer.chooseMenuItem(StylusWindow::current()->getNativeWindow(), file.findItem(item)->getCommand()));
    }
    KFileReference storyFile() const
    {
        return KFileReference(KPath(KTextCodec::fromUtf8(story), KPath::kHostPlatform));
    }

    filetest::TempFolder folder;
    std::string story;
};

} // namespace

TEST_F(StoryExportTest, TheBookIsWrittenWhereChosenAndAFailureIsTold)
{
    runApp({}, [&](TestApplication&) {
        writeSample();
        ASSERT_TRUE(StylusActions::current()->openProject(storyFile()));
        std::string book = folder.file("Bedtime.epub");
        layer.answerChooser({ true, book });
        choose(FileMenu::ExportEpub);
        ASSERT_EQ(layer.chooserRequests().size(), 1u);
        EXPECT_EQ(layer.chooserRequests()[0].title, "Export as EPUB");
        EXPECT_TRUE(fs::is_regular_file(book));
        EXPECT_FALSE(fs::exists(book + ".part"));
        ASSERT_FALSE(alertTexts().empty());
        EXPECT_EQ(alertTexts().back(), "The story was exported as Bedtime.epub.");

        std::string nowhere = folder.file("gone/Bedtime.mp4");
        layer.answerChooser({ true, nowhere });
        choose(FileMenu::ExportVideo);
        ASSERT_EQ(alertTexts().size(), 2u);
        EXPECT_EQ(alertTexts().back().rfind("The story could not be exported: ", 0), 0u) << alertTexts().back();
        EXPECT_FALSE(fs::exists(folder.file("gone")));

        // A cancelled chooser exports nothing.
        layer.answerChooser({ false, "" });
        choose(FileMenu::ExportVideo);
        EXPECT_EQ(alertTexts().size(), 2u);
    });
}

// Closing the pipe the reports come through stops the child, which takes
// away what it had begun.
TEST_F(StoryExportTest, AStoppedExportLeavesNothing)
{
    runApp({}, [&](TestApplication&) {
        writeSample();
        std::string video = folder.file("story.mp4");
        std::vector<std::string> command = StoryExport::commandFor(StoryExport::Kind::Video, story, video);
        KChildProcess child;
        std::string reason;
        ASSERT_TRUE(child.start(command, reason)) << reason;
        std::vector<std::string> lines;
        while (lines.empty() && child.readLines(lines, 1000)) { }
        ASSERT_FALSE(lines.empty());
        EXPECT_EQ(lines[0].rfind("progress ", 0), 0u);
        child.closeOutput();
        EXPECT_EQ(child.finish(30000), 1);
        EXPECT_FALSE(fs::exists(video));
        EXPECT_FALSE(fs::exists(video + ".part"));
    });
}
