// taleloom-tool dump on speech exceptions and sound highlight files.

#include "app/AppClasses.h"
#include "kernel/KFileReference.h"
#include "kmultimedia/KSoundHiliteFile.h"
#include "kmultimedia/KSoundHiliteMarker.h"
#include "kmultimedia/KSoundHiliteMedia.h"
#include "kmultimedia/KSpeechExceptionHandler.h"
#include "tests/kernel/FileTestSupport.h"
#include "tests/kernel/PersistenceTestSupport.h"
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

ToolRun dump(const std::string& path)
{
    std::ostringstream out;
    std::ostringstream err;
    int status = runTaleloomTool({ "dump", path }, out, err);
    return { status, out.str(), err.str() };
}

class MediaDump : public testing::Test {
protected:
    void SetUp() override { registerDocumentClasses(); }

    std::string writeExceptions(const char* name)
    {
        KSpeechExceptionHandler handler(KFileReference(folder.pathOf(name)));
        handler.add(KString("Dr"), KString("Doctor"));
        handler.add(KString("Caf\xE9"), KString("Ka fay"));
        EXPECT_TRUE(handler.save());
        return folder.file(name);
    }
    std::string writeHighlight(const char* name)
    {
        KSoundHiliteMediaPtr media(new KSoundHiliteMedia());
        media->setText(KString("Big dog"));
        media->setSoundFile(KFileReference(KPath(KString("/sounds/dog.wav"), KPath::LinuxPlatform)));
        media->addMarker(*new KSoundHiliteMarker(0, 0, KString("Big")));
        media->addMarker(*new KSoundHiliteMarker(350, 4, KString("dog")));
        EXPECT_TRUE(KSoundHiliteFile::save(KFileReference(folder.pathOf(name)), 900, *media));
        return folder.file(name);
    }

    TempFolder folder;
};

} // namespace

TEST_F(MediaDump, WritesSpeechExceptionsAsJson)
{
    ToolRun run = dump(writeExceptions("words.DAT"));
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, R"({
  "version": 1,
  "exceptions": [
    {
      "written": "Café",
      "spoken": "Ka fay"
    },
    {
      "written": "Dr",
      "spoken": "Doctor"
    }
  ]
}
)");
}

TEST_F(MediaDump, WritesSoundHighlightsAsJsonByNameOrByContent)
{
    const std::string expected = R"({
  "duration": 900,
  "soundFile": "dog.wav",
  "soundPath": "/sounds/dog.wav",
  "text": "Big dog",
  "markers": [
    {
      "time": 0,
      "start": 0,
      "length": 3,
      "text": "Big"
    },
    {
      "time": 350,
      "start": 4,
      "length": 3,
      "text": "dog"
    }
  ]
}
)";
    ToolRun named = dump(writeHighlight("reading.shi"));
    EXPECT_EQ(named.status, 0) << named.err;
    EXPECT_EQ(named.out, expected);
    ToolRun unnamed = dump(writeHighlight("reading.bin"));
    EXPECT_EQ(unnamed.status, 0) << unnamed.err;
    EXPECT_EQ(unnamed.out, expected);
}

TEST_F(MediaDump, DamagedFilesShowWhatCameFirstAndGiveOneLineAndStatusOne)
{
    std::vector<uint8_t> words = bytesOf(writeExceptions("words.DAT"));
    words.resize(words.size() - 3);
    writeBytes(folder.file("cut.DAT"), words);
    ToolRun cut = dump(folder.file("cut.DAT"));
    EXPECT_EQ(cut.status, 1);
    EXPECT_EQ(cut.err, "taleloom-tool: " + folder.file("cut.DAT")
                           + ": damaged speech exceptions file: Error: EOF Reached! (code 40)\n");
    EXPECT_NE(cut.out.find("\"Caf\xC3\xA9\""), std::string::npos) << "the first record was read";
    EXPECT_EQ(cut.out.find("Doctor"), std::string::npos);

    std::vector<uint8_t> reading = bytesOf(writeHighlight("reading.SHI"));
    reading.resize(reading.size() - 3);
    writeBytes(folder.file("cut.SHI"), reading);
    ToolRun cutShi = dump(folder.file("cut.SHI"));
    EXPECT_EQ(cutShi.status, 1);
    EXPECT_EQ(cutShi.err.rfind("taleloom-tool: " + folder.file("cut.SHI") + ": damaged sound highlight file: ", 0), 0u);
    EXPECT_EQ(std::count(cutShi.err.begin(), cutShi.err.end(), '\n'), 1);

    writeBytes(folder.file("notes.SHI"), Bytes().text("Once upon a time there was a fox.\n"));
    ToolRun notes = dump(folder.file("notes.SHI"));
    EXPECT_EQ(notes.status, 1);
    EXPECT_EQ(notes.err, "taleloom-tool: " + folder.file("notes.SHI") + ": not a sound highlight file\n");
    EXPECT_EQ(notes.out, "");

    ToolRun absent = dump(folder.file("absent.SHI"));
    EXPECT_EQ(absent.status, 1);
    EXPECT_EQ(absent.err.rfind("taleloom-tool: " + folder.file("absent.SHI") + ": ", 0), 0u);
    EXPECT_EQ(absent.out, "");
}
