// Old documents written here byte by byte, converted with both answers to
// the platform question: what each old record becomes, where the media
// land, and that a damaged old file stops with a message and leaves
// nothing behind.

#include "tests/kernel/FileTestSupport.h"
#include "tests/project/OldDocumentWriter.h"
#include "tests/project/ProjectTestSupport.h"

#include "kernel/KTextCodec.h"
#include "project/ProjectClasses.h"
#include "project/StylusProject.h"
#include "project/legacy/OldDocument.h"
#include "tape/Stroke.h"
#include "tape/StylusImage.h"
#include "tape/StylusMovie.h"
#include "tape/StylusPause.h"
#include "tape/StylusSound.h"
#include "tape/StylusSpeech.h"
#include "tape/StylusText.h"
#include "tape/WaitObject.h"
#include "tape/WipeOut.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using namespace filetest;
using namespace projecttest;
namespace fs = std::filesystem;

namespace {

std::string utf8(const KString& text) { return KTextCodec::toUtf8(text); }

std::string fileName(const KFileReference& file) { return fs::path(utf8(file.getNativeText())).filename().string(); }

// One record of each kind, the waits of each version, a bare tape object
// and an inactive stroke. The text holds byte 0x8E.
std::vector<uint8_t> everyKind(const std::string& picturePath, const std::string& soundPath)
{
    OldDocumentWriter w;
    w.beginTape(14);
    w.wipe(0xFFFF, 0xFFFF, 0xFFFF, "", 3);
    w.stroke(0xFFFF, 0, 0, 9, { { 100, 100 }, { 140, 120 } });
    w.stroke(0, 0xFFFF, 0, 5, { { 300, 50 } }, false);
    w.textElement("Caf\x8E\rNight", "My Voice Male");
    w.speech("Hello", "My Voice Female");
    w.sound(soundPath);
    w.pause(1500);
    w.picture(ZClass::Image, picturePath, true);
    w.picture(ZClass::Movie, "gone.mov", false);
    w.wait(1, {});
    w.wait(2, { 0, 1, 1, 1 });
    w.wait(3, { 1, 0, 0, 0, 0 });
    w.element(ZClass::TapeObject);
    w.element(ZClass::Stroke, 1, false);
    w.colour(0, 0, 0);
    w.shortValue(3);
    w.shortValue(0);
    w.head(ZClass::Bag);
    w.head(ZClass::Array, 2);
    w.longValue(0);
    w.byte(1);
    w.byte(0);
    w.longValue(0);
    w.longValue(8);
    w.longValue(0);
    w.endTape(0, 60, true, false);
    return w.bytes;
}

class OldDocumentTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        registerProjectClasses();
        StylusProject::setRetryDelay(0);
        fs::create_directories(folder.file("old/Pictures"));
        writePicture(folder.file("old/sun.png"));
        std::ofstream(folder.file("old/Pictures/CHIME.WAV")) << "RIFF";
        fs::create_directories(folder.file("projects"));
    }
    static void writePicture(const std::string& path)
    {
        KImagePtr image(new KImage(KGraphicSize(4, 4)));
        ASSERT_TRUE(image->writeToPath(KTextCodec::fromUtf8(path)));
    }
    void writeOld(const std::string& name, const std::vector<uint8_t>& bytes)
    {
        std::ofstream out(folder.file("old/" + name), std::ios::binary);
        out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
    }
    bool convert(const std::string& old, int32_t platform, const std::string& name, OldDocumentReport& report)
    {
        OldDocument::Request request;
        request.oldPath = folder.file("old/" + old);
        request.platform = platform;
        request.folder = folder.file("projects");
        request.name = name;
        return OldDocument::convert(request, report);
    }
    TapePtr open(const std::string& document)
    {
        StylusProjectPtr project(new StylusProject());
        HostScope host;
        EXPECT_TRUE(project->load(KFileReference(KPath(KTextCodec::fromUtf8(document), KPath::kHostPlatform))));
        return project->getTape();
    }

    TempFolder folder;
};

} // namespace

TEST_F(OldDocumentTest, EveryOldRecordBecomesItsElementOnEitherPlatform)
{
    struct Platform {
        int32_t answer;
        std::string picture;
        std::string sound;
        std::string accented;
        std::string soundName;
    };
    const Platform platforms[] = {
        { KString::Macintosh, "Stories:Art:sun.png", "Stories:Pictures:chime.wav", "Caf\xC3\xA9", "chime.wav" },
        { KString::Windows, "C:\\Stories\\Art\\SUN.PNG", "C:\\Sounds\\Chime.wav", "Caf\xC5\xBD", "Chime.wav" },
    };
    for (const Platform& platform : platforms) {
        SCOPED_TRACE(platform.answer);
        std::string name = platform.answer == KString::Macintosh ? "Mac" : "Windows";
        writeOld(name + ".STT", everyKind(platform.picture, platform.sound));
        OldDocumentReport report;
        ASSERT_TRUE(convert(name + ".STT", platform.answer, name, report)) << report.failure << " " << report.location;
        EXPECT_EQ(report.recordsSkipped, 1);
        EXPECT_EQ(report.mediaCopied, 1);
        EXPECT_EQ(report.missing, (std::vector<std::string> { platform.soundName, "gone.mov" }));
        EXPECT_EQ(report.elements["Stroke"], 3);
        EXPECT_EQ(report.elements["Wait"], 3);
        // The picture found beside the old document is copied; the sound,
        // in a folder its name does not lead to, is missing and keeps its
        // bare name.
        EXPECT_TRUE(fs::exists(folder.file("projects/" + name + "/Media/sun.png")));

        TapePtr tape = open(report.document);
        ASSERT_EQ(tape->getCount(), 13);
        EXPECT_EQ(tape->getPageSize(), KGraphicSize(640, 480));
        EXPECT_EQ(tape->getPlayInterval(), 40);
        EXPECT_TRUE(tape->isLooping());
        const int32_t kinds[]
            = { PageTransitionType, StrokeType, StrokeType, TextType, SpeechType, SoundType, PauseType,
                ImageType,          MovieType,  WaitType,   WaitType, WaitType,   StrokeType };
        for (int32_t i = 0; i < 13; ++i)
            EXPECT_EQ(tape->getAt(i)->getType(), kinds[i]) << i;

        auto* wipe = dynamic_cast<WipeOut*>(tape->getAt(0));
        EXPECT_EQ(wipe->getEffect(), 3);
        auto* red = dynamic_cast<Stroke*>(tape->getAt(1));
        EXPECT_EQ(red->getColour().getNative(), 0xFF0000u);
        EXPECT_EQ(red->getBrushWidth(), 9);
        ASSERT_EQ(red->getPointCount(), 2);
        EXPECT_EQ(red->getPoint(1), KGraphicPoint(140, 120));
        EXPECT_EQ(dynamic_cast<Stroke*>(tape->getAt(2))->getPoint(0), KGraphicPoint(300, 50));
        EXPECT_FALSE(tape->getAt(12)->isActive());

        auto* text = dynamic_cast<StylusText*>(tape->getAt(3));
        EXPECT_EQ(utf8(text->getTextBlock().getPlainText()), platform.accented + "\rNight");
        EXPECT_EQ(text->getVoice(), KString("MyVoice Male"));
        EXPECT_EQ(text->getBounds(), KGraphicRectangle(40, 300, 560, 120));
        EXPECT_EQ(dynamic_cast<StylusSpeech*>(tape->getAt(4))->getVoice(), KString("MyVoice Female"));
        EXPECT_EQ(fileName(dynamic_cast<StylusSound*>(tape->getAt(5))->getFile()), platform.soundName);
        EXPECT_EQ(dynamic_cast<StylusPause*>(tape->getAt(6))->getDuration(), 1500);
        EXPECT_EQ(fileName(dynamic_cast<StylusImage*>(tape->getAt(7))->getImageFile()), "sun.png");

        // Version 1 waits for a click; version 2 has four flags and shows
        // the warning; version 3 says so itself.
        auto* first = dynamic_cast<WaitObject*>(tape->getAt(9));
        auto* second = dynamic_cast<WaitObject*>(tape->getAt(10));
        auto* third = dynamic_cast<WaitObject*>(tape->getAt(11));
        EXPECT_TRUE(first->getWaitForUser());
        EXPECT_FALSE(second->getWaitForUser());
        EXPECT_TRUE(second->getWaitForSounds() && second->getWaitForSpeech() && second->getVisualWarning());
        EXPECT_TRUE(third->getWaitForUser());
        EXPECT_FALSE(third->getVisualWarning());

        // The page shows the old stroke in its colour on the white page.
        std::vector<uint32_t> page = pageAt(*tape, 2);
        EXPECT_EQ(page[size_t(100 * 640 + 100)], 0xFF0000u);
        EXPECT_EQ(page[size_t(10 * 640 + 10)], 0xFFFFFFu);
    }
}

TEST_F(OldDocumentTest, ADamagedOldFileStopsWithAMessageAndLeavesNothing)
{
    std::vector<uint8_t> whole = everyKind("sun.png", "chime.wav");
    // Cut at every offset: never a crash, never a project.
    for (size_t cut = 0; cut < whole.size(); ++cut) {
        writeOld("cut.STT", std::vector<uint8_t>(whole.begin(), whole.begin() + std::ptrdiff_t(cut)));
        OldDocumentReport report;
        ASSERT_FALSE(convert("cut.STT", KString::Windows, "Cut", report)) << cut;
        EXPECT_FALSE(report.failure.empty()) << cut;
        ASSERT_FALSE(fs::exists(folder.file("projects/Cut"))) << cut;
    }

    struct Damage {
        std::vector<uint8_t> bytes;
        std::string failure;
    };
    OldDocumentWriter unknown;
    unknown.beginTape(1);
    unknown.longValue(12345);
    OldDocumentWriter huge;
    huge.head(ZClass::Tape);
    huge.head(ZClass::Bag);
    huge.head(ZClass::Array, 2);
    huge.longValue(0x7FFFFFFF);
    huge.byte(0);
    huge.byte(0);
    OldDocumentWriter negative = huge;
    negative.bytes[24] = 0xFF;
    OldDocumentWriter wrongHead;
    wrongHead.beginTape(1);
    wrongHead.longValue(ZClass::idOf(ZClass::Stroke));
    wrongHead.head(ZClass::StylusPause);
    const Damage damages[] = {
        { unknown.bytes, "Class Was Not Registered." },
        { huge.bytes, "Index Out Of Range" },
        { negative.bytes, "Negative size." },
        { wrongHead.bytes, "Wrong Class." },
    };
    for (const Damage& damage : damages) {
        writeOld("bad.STT", damage.bytes);
        OldDocumentReport report;
        EXPECT_FALSE(convert("bad.STT", KString::Macintosh, "Bad", report));
        EXPECT_EQ(report.failure, damage.failure);
        EXPECT_FALSE(fs::exists(folder.file("projects/Bad")));
    }

    // Not an old document at all: today's document, or anything else.
    std::ofstream(folder.file("old/today.STT")) << "STDF and more";
    OldDocumentReport report;
    EXPECT_FALSE(convert("today.STT", KString::Macintosh, "Today", report));
    EXPECT_TRUE(report.notOldDocument);
    EXPECT_EQ(report.failure, "This file is not a TaleLoom Document File!");
}

TEST_F(OldDocumentTest, OldDocumentsAreKnownByNameOrByContent)
{
    writeOld("story.stt", { 1, 2, 3 });
    EXPECT_TRUE(OldDocument::isOldDocument(folder.file("old/story.stt")));
    OldDocumentWriter tape;
    tape.beginTape(0, true);
    tape.endTape(0, 30, false, true);
    writeOld("renamed.dat", tape.bytes);
    EXPECT_TRUE(OldDocument::isOldDocument(folder.file("old/renamed.dat")));
    writeOld("other.dat", { 'S', 'T', 'D', 'F', 0, 0, 0, 0 });
    EXPECT_FALSE(OldDocument::isOldDocument(folder.file("old/other.dat")));

    // A tag before the tape's head is accepted; an empty old tape converts.
    writeOld("tagged.dat", tape.bytes);
    OldDocumentReport report;
    ASSERT_TRUE(convert("tagged.dat", KString::Windows, "Tagged", report)) << report.failure;
    TapePtr converted = open(report.document);
    EXPECT_EQ(converted->getCount(), 0);
    EXPECT_EQ(converted->getPlayInterval(), 20);
    EXPECT_TRUE(converted->getFlags().test(Tape::HideMenuBar));
    // The project's name is taken.
    EXPECT_FALSE(convert("tagged.dat", KString::Windows, "Tagged", report));
}
