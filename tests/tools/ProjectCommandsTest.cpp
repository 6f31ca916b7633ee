#include "tests/kernel/FileTestSupport.h"
#include "tests/project/ProjectTestSupport.h"

#include "app/AppClasses.h"
#include "graphics/KImage.h"
#include "kernel/KTextCodec.h"
#include "project/StylusProject.h"
#include "tools/taleloom-tool/RenderCommand.h"
#include "tools/taleloom-tool/TaleloomTool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

using namespace filetest;
using namespace projecttest;

namespace {

struct ToolRun {
    int status;
    std::string out;
    std::string err;
};

ToolRun tool(const std::vector<std::string>& arguments)
{
    std::ostringstream out;
    std::ostringstream err;
    int status = runTaleloomTool(arguments, out, err);
    return { status, out.str(), err.str() };
}

bool isOneLine(const std::string& text)
{
    return !text.empty() && text.back() == '\n' && std::count(text.begin(), text.end(), '\n') == 1;
}

void putLong(std::vector<uint8_t>& bytes, size_t offset, int32_t value)
{
    for (int i = 0; i < 4; ++i)
        bytes.at(offset + size_t(i)) = uint8_t(uint32_t(value) >> (24 - 8 * i));
}

class ProjectCommands : public ::testing::Test {
protected:
    void SetUp() override
    {
        registerDocumentClasses();
        std::filesystem::create_directory(folder.file("story"));
        story = new StylusProject();
        story->getTape()->setPageSize(KGraphicSize(160, 120));
        fillStory(*story->getTape());
        ASSERT_TRUE(story->save(KFileReference(folder.pathOf("story/story.TPD"))));
        // The commands must find their way without these.
        std::filesystem::remove_all(folder.file("story/Media"));
        std::filesystem::remove_all(folder.file("story/Actors"));
    }

    std::string document() const { return folder.file("story/story.TPD"); }

    // The pixels of a PNG file the command wrote.
    std::vector<uint32_t> pictureIn(const std::string& file)
    {
        KImagePtr image(new KImage());
        if (!image->createFromPath(KTextCodec::fromUtf8(file)))
            return {};
        EXPECT_EQ(image->getSize(), KGraphicSize(160, 120));
        return pixelsOf(image->getDevice());
    }

    TempFolder folder;
    StylusProjectPtr story;
};

} // namespace

TEST_F(ProjectCommands, InfoListsTheElements)
{
    ToolRun run = tool({ "info", document() });
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err, "");
    std::string element = R"(
    {
      "index": %d,
      "type": %t,
      "kind": "%k",
      "active": %a,
      "bookmark": "%b"
    })";
    auto describe = [&](int index, int type, const char* kind, bool active, const char* bookmark) {
        std::string text = element;
        text.replace(text.find("%d"), 2, std::to_string(index));
        text.replace(text.find("%t"), 2, std::to_string(type));
        text.replace(text.find("%k"), 2, kind);
        text.replace(text.find("%a"), 2, active ? "true" : "false");
        text.replace(text.find("%b"), 2, bookmark);
        return text;
    };
    std::string expected = "{\n  \"width\": 160,\n  \"height\": 120,\n  \"position\": 5,\n  \"elementCount\": 5,\n"
                           "  \"elements\": ["
                           + describe(0, 2, "Stroke", true, "Opening") + "," + describe(1, 2, "Stroke", true, "") + ","
                           + describe(2, 7, "Page Transition", true, "") + "," + describe(3, 2, "Stroke", true, "")
                           + "," + describe(4, 2, "Stroke", false, "") + "\n  ]\n}\n";
    EXPECT_EQ(run.out, expected);
    // Looking does not change the project's folder.
    EXPECT_FALSE(std::filesystem::exists(folder.file("story/Media")));

    // A newer document is shown with a warning on the side.
    std::vector<uint8_t> bytes = bytesOf(document());
    putLong(bytes, 4, 4);
    writeBytes(folder.file("story/newer.TPD"), bytes);
    ToolRun newer = tool({ "info", folder.file("story/newer.TPD") });
    EXPECT_EQ(newer.status, 0);
    EXPECT_EQ(newer.out, expected);
    EXPECT_TRUE(isOneLine(newer.err)) << newer.err;
    EXPECT_NE(newer.err.find("newer version"), std::string::npos) << newer.err;
}

TEST_F(ProjectCommands, InfoRefusesWhatItCannotRead)
{
    std::vector<uint8_t> bytes = bytesOf(document());
    bytes[1] = 'X';
    writeBytes(folder.file("story/wrong.TPD"), bytes);
    writeBytes(folder.file("story/short.TPD"), std::vector<uint8_t>(bytes.begin(), bytes.begin() + 100));
    for (const std::string& name : { folder.file("story/wrong.TPD"), folder.file("story/short.TPD") }) {
        ToolRun run = tool({ "info", name });
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.out, "");
        EXPECT_TRUE(isOneLine(run.err)) << run.err;
        EXPECT_EQ(run.err, "taleloom-tool: " + name + ": This file is not a TaleLoom Document File!\n");
    }
    ToolRun missing = tool({ "info", folder.file("story/none.TPD") });
    EXPECT_EQ(missing.status, 1);
    EXPECT_TRUE(isOneLine(missing.err)) << missing.err;
    EXPECT_NE(missing.err.find("cannot open"), std::string::npos) << missing.err;

    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>> {
             { "info" }, { "info", document(), document() }, { "info", "--all", document() } }) {
        ToolRun run = tool(arguments);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.err, "usage: taleloom-tool info PROJECT.TPD\n");
    }
}

TEST_F(ProjectCommands, RenderDrawsThePageAtThePosition)
{
    Tape& tape = *story->getTape();
    for (int32_t position : { 0, 1, 2, 3, 4, 5 }) {
        SCOPED_TRACE(position);
        std::string picture = folder.file("page" + std::to_string(position) + ".png");
        ToolRun run = tool({ "render", document(), "--position", std::to_string(position), "-o", picture });
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(pictureIn(picture), pageAt(tape, position));
    }
    // Pages differ where the story does: the strokes, then the blue page.
    EXPECT_NE(pictureIn(folder.file("page0.png")), pictureIn(folder.file("page1.png")));
    EXPECT_NE(pictureIn(folder.file("page2.png")), pictureIn(folder.file("page3.png")));
    EXPECT_EQ(pictureIn(folder.file("page4.png")), pictureIn(folder.file("page5.png")));
    std::vector<uint32_t> blue = pictureIn(folder.file("page3.png"));
    EXPECT_EQ(std::count(blue.begin(), blue.end(), 0x0000FFu), int64_t(blue.size()));

    // Without a position, and past the end, it is the end.
    ToolRun end = tool({ "render", "-o", folder.file("end.PNG"), document() });
    ASSERT_EQ(end.status, 0) << end.err;
    EXPECT_EQ(pictureIn(folder.file("end.PNG")), pageAt(tape, 5));
    ToolRun beyond = tool({ "render", document(), "--position", "99", "-o", folder.file("beyond.png") });
    ASSERT_EQ(beyond.status, 0) << beyond.err;
    EXPECT_EQ(pictureIn(folder.file("beyond.png")), pageAt(tape, 5));
    EXPECT_FALSE(std::filesystem::exists(folder.file("story/Media")));
}

// What a file manager's thumbnailer asks for: the longer side at N, the
// shape kept, larger or smaller than the page.
TEST_F(ProjectCommands, RenderScalesToTheLongerSide)
{
    auto renderAt = [&](const std::string& project, int32_t size, const char* position) {
        std::string picture = folder.file("thumb" + std::to_string(size) + ".png");
        ToolRun run
            = tool({ "render", project, "--position", position, "--size", std::to_string(size), "-o", picture });
        EXPECT_EQ(run.status, 0) << run.err;
        KImagePtr image(new KImage());
        EXPECT_TRUE(image->createFromPath(KTextCodec::fromUtf8(picture)));
        return image;
    };
    // The blue page stays blue to its edges at every scale.
    for (int32_t size : { 64, 128, 320 }) {
        SCOPED_TRACE(size);
        KImagePtr thumb = renderAt(document(), size, "3");
        EXPECT_EQ(thumb->getSize(), KGraphicSize(int16_t(size), int16_t(size * 3 / 4)));
        std::vector<uint32_t> pixels = pixelsOf(thumb->getDevice());
        EXPECT_EQ(std::count(pixels.begin(), pixels.end(), 0x0000FFu), int64_t(pixels.size()));
    }
    // At the page's own size the picture is the page itself.
    EXPECT_EQ(pixelsOf(renderAt(document(), 160, "2")->getDevice()), pageAt(*story->getTape(), 2));

    // A tall page keeps its height as the longer side.
    std::filesystem::create_directory(folder.file("tall"));
    StylusProjectPtr tall(new StylusProject());
    tall->getTape()->setPageSize(KGraphicSize(90, 160));
    ASSERT_TRUE(tall->save(KFileReference(folder.pathOf("tall/tall.TPD"))));
    EXPECT_EQ(renderAt(folder.file("tall/tall.TPD"), 100, "0")->getSize(), KGraphicSize(56, 100));
}

TEST(RenderSize, LongerSideTakesTheSizeAndTheOtherFollows)
{
    EXPECT_EQ(scaledPageSize(KGraphicSize(800, 600), 128), KGraphicSize(128, 96));
    EXPECT_EQ(scaledPageSize(KGraphicSize(600, 800), 256), KGraphicSize(192, 256));
    EXPECT_EQ(scaledPageSize(KGraphicSize(640, 640), 48), KGraphicSize(48, 48));
    // Rounded to the nearest pixel, never below one.
    EXPECT_EQ(scaledPageSize(KGraphicSize(300, 200), 100), KGraphicSize(100, 67));
    EXPECT_EQ(scaledPageSize(KGraphicSize(1000, 1), 10), KGraphicSize(10, 1));
    EXPECT_EQ(scaledPageSize(KGraphicSize(2, 3000), 8192), KGraphicSize(5, 8192));
}

TEST_F(ProjectCommands, RenderExitCodes)
{
    const std::string usage
        = "usage: taleloom-tool render PROJECT.TPD [--position N] [--size N] [--lit E:S:L] [--no-texts] -o PAGE.png\n";
    std::string out = folder.file("out.png");
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>> {
             { "render" },
             { "render", document() },
             { "render", "-o", out },
             { "render", document(), "-o" },
             { "render", document(), "-o", folder.file("out.bmp") },
             { "render", document(), "--position", "-1", "-o", out },
             { "render", document(), "--position", "2x", "-o", out },
             { "render", document(), "--position", "99999999999", "-o", out },
             { "render", document(), "--position", "1", "--position", "2", "-o", out },
             { "render", document(), document(), "-o", out },
             { "render", document(), "--size", "0", "-o", out },
             { "render", document(), "--size", "-8", "-o", out },
             { "render", document(), "--size", "8193", "-o", out },
             { "render", document(), "--size", "64", "--size", "64", "-o", out },
             { "render", document(), "-o", out, "--size" } }) {
        ToolRun run = tool(arguments);
        EXPECT_EQ(run.status, 2) << ::testing::PrintToString(arguments);
        EXPECT_EQ(run.err, usage);
    }
    EXPECT_FALSE(std::filesystem::exists(out));

    writeBytes(folder.file("story/junk.TPD"), { 'S', 'T', 'D', 'F', 0, 0 });
    for (const std::string& name : { folder.file("story/junk.TPD"), folder.file("story/none.TPD") }) {
        ToolRun run = tool({ "render", name, "-o", out });
        EXPECT_EQ(run.status, 1);
        EXPECT_TRUE(isOneLine(run.err)) << run.err;
        EXPECT_EQ(run.err.rfind("taleloom-tool: " + name + ": ", 0), 0u) << run.err;
    }
    EXPECT_FALSE(std::filesystem::exists(out));

    ToolRun unwritable = tool({ "render", document(), "-o", folder.file("no/such/folder/page.png") });
    EXPECT_EQ(unwritable.status, 1);
    EXPECT_TRUE(isOneLine(unwritable.err)) << unwritable.err;
    EXPECT_NE(unwritable.err.find("cannot write"), std::string::npos) << unwritable.err;
}
