#include "kernel/KBag.h"
#include "kernel/KDocument.h"
#include "kernel/KFileReference.h"
#include "kernel/KNumber.h"
#include "kernel/KString.h"
#include "tests/kernel/FileTestSupport.h"
#include "tests/kernel/PersistenceTestSupport.h"
#include "tools/taleloom-tool/FrameTree.h"
#include "tools/taleloom-tool/TaleloomTool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

using namespace filetest;
using namespace persistencetest;

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

class DumpCommand : public testing::Test {
protected:
    // A small story: a text, a number, a bag with a raw value bag inside and
    // an empty slot, and an entry of a class this program does not know.
    std::string writeStory()
    {
        KDocument story;
        KFileReference reference(folder.pathOf("story.doc"));
        story.setFile(reference);
        story.setMagic(KDocument::makeMagic("SLXT"));
        story.setVersion(2);
        story.add("title", *new KString("B\xe4r \"1\""));
        story.add("scale", *new KNumber(0.5));
        auto* bag = new KBag();
        bag->setGrowSize(2);
        auto* raw = new KBag();
        raw->setIsDirect(true);
        raw->addDirectData(-7);
        bag->add(*raw);
        story.add("bag", *bag);
        story.add("mystery", *new KNumber(1.0));
        EXPECT_TRUE(story.save());
        std::vector<uint8_t> bytes = bytesOf(folder.file("story.doc"));
        // The last number becomes an object of a class nobody registered:
        // its tag and its frame carry the new class id.
        std::vector<uint8_t> number = Bytes().l(idOf("KNumber")).get();
        auto frame = std::find_end(bytes.begin(), bytes.end(), number.begin(), number.end());
        std::vector<uint8_t> unknown = Bytes().l(4321).l(4321).get();
        std::copy(unknown.begin(), unknown.end(), frame - 4);
        writeBytes(folder.file("story.doc"), bytes);
        return folder.file("story.doc");
    }

    TempFolder folder;
};

} // namespace

TEST_F(DumpCommand, WritesTheDocumentAsJson)
{
    ToolRun run = tool({ "dump", writeStory() });
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, R"({
  "magic": "SLXT",
  "version": 2,
  "dataIgnored": false,
  "entries": [
    {
      "key": "title",
      "value": {
        "class": "KString",
        "charSet": 1,
        "text": "Bär \"1\""
      }
    },
    {
      "key": "scale",
      "value": {
        "class": "KNumber",
        "value": 0.5
      }
    },
    {
      "key": "bag",
      "value": {
        "class": "KBag",
        "size": 2,
        "isDirect": false,
        "usedSize": 1,
        "growSize": 2,
        "minSize": 0,
        "elements": [
          {
            "class": "KBag",
            "size": 1,
            "isDirect": true,
            "usedSize": 1,
            "growSize": 1,
            "minSize": 0,
            "elements": [
              -7
            ]
          }
        ]
      }
    },
    {
      "key": "mystery",
      "value": {
        "class": null,
        "classId": 4321
      }
    }
  ]
}
)");
}

TEST_F(DumpCommand, ShowsTheRawFrames)
{
    ToolRun run = tool({ "dump", "--sections", writeStory() });
    EXPECT_EQ(run.status, 0) << run.err;
    std::istringstream lines(run.out);
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "head: magic \"SLXT\", version 2");
    std::getline(lines, line);
    EXPECT_EQ(
        line.rfind("frame at 8: KNamedBag (class id " + std::to_string(idOf("KNamedBag")) + "), version 1, body ", 0),
        0u)
        << line;
    std::getline(lines, line);
    EXPECT_EQ(line.rfind("  section 1 at 24: ", 0), 0u) << line;
    EXPECT_NE(run.out.find("unknown class (class id 4321)"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("        frame at "), std::string::npos) << "frames nest inside sections";

    // A truncated file: what can be read is shown, and one line says why not more.
    std::vector<uint8_t> bytes = bytesOf(folder.file("story.doc"));
    bytes.resize(bytes.size() / 2);
    writeBytes(folder.file("cut.doc"), bytes);
    run = tool({ "dump", "--sections", folder.file("cut.doc") });
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(isOneLine(run.err)) << run.err;
    EXPECT_NE(run.err.find("damaged document"), std::string::npos) << run.err;
    EXPECT_EQ(run.out.rfind("head: magic \"SLXT\"", 0), 0u) << run.out;

    // Damage anywhere gives some tree and, when it fails, a reason.
    std::vector<uint8_t> intact = bytesOf(folder.file("story.doc"));
    uint32_t seed = 99;
    auto next = [&seed] { return seed = seed * 1664525u + 1013904223u; };
    for (int round = 0; round < 1000; ++round) {
        std::vector<uint8_t> damaged = intact;
        for (int flips = 1 + int(next() % 3); flips > 0; --flips)
            damaged[(next() >> 8) % damaged.size()] = uint8_t(next() >> 16);
        damaged.erase(damaged.end() - long((next() >> 8) % 40), damaged.end());
        std::string text;
        std::string reason;
        bool whole = describeFrameTree(damaged, text, reason);
        EXPECT_EQ(whole, reason.empty()) << reason;
    }
}

TEST_F(DumpCommand, BadFilesGiveOneLineAndStatusOne)
{
    std::vector<uint8_t> bytes = bytesOf(writeStory());
    bytes.resize(bytes.size() - 5);
    writeBytes(folder.file("cut.doc"), bytes);
    writeBytes(folder.file("notes.txt"), Bytes().text("Once upon a time there was a fox.\n"));
    writeBytes(folder.file("tiny.doc"), Bytes().text("SLX"));

    for (const char* name : { "cut.doc", "notes.txt", "tiny.doc", "absent.doc" }) {
        ToolRun run = tool({ "dump", folder.file(name) });
        EXPECT_EQ(run.status, 1) << name;
        EXPECT_TRUE(isOneLine(run.err)) << name << ": " << run.err;
        EXPECT_EQ(run.err.rfind("taleloom-tool: " + folder.file(name) + ": ", 0), 0u) << run.err;
        EXPECT_EQ(run.out, "") << name;
    }
    EXPECT_NE(tool({ "dump", folder.file("cut.doc") }).err.find("damaged document: Error: EOF Reached! (code 40)"),
              std::string::npos);
    EXPECT_NE(tool({ "dump", folder.file("notes.txt") }).err.find("not a document"), std::string::npos);
}

TEST_F(DumpCommand, UsageErrorsGiveTheUsageAndStatusTwo)
{
    const std::string usage = "usage: taleloom-tool dump [--sections] FILE\n";
    for (const auto& arguments : std::vector<std::vector<std::string>> {
             { "dump" }, { "dump", "--sections" }, { "dump", "--json", "x" }, { "dump", "a", "b" } }) {
        ToolRun run = tool(arguments);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.err, usage);
        EXPECT_EQ(run.out, "");
    }
    // Without a known command every command's usage is shown, one line each, the dump command's first.
    for (const auto& arguments : std::vector<std::vector<std::string>> { {}, { "frobnicate" } }) {
        ToolRun run = tool(arguments);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.out, "");
        ASSERT_EQ(run.err.rfind(usage, 0), 0u);
        std::istringstream lines(run.err);
        std::string line;
        int count = 0;
        for (; std::getline(lines, line); ++count)
            EXPECT_EQ(line.rfind("usage: taleloom-tool ", 0), 0u) << line;
        for (const char* command : { "info", "render", "voices", "speak", "play", "palette", "previews", "publish" })
            EXPECT_NE(run.err.find(std::string("usage: taleloom-tool ") + command + " "), std::string::npos) << command;
        EXPECT_GE(count, 10);
    }
}
