#include "tests/kernel/FileTestSupport.h"
#include "tests/project/ProjectTestSupport.h"
#include "tests/support/TestSupport.h"

#include "kernel/KClass.h"
#include "kernel/KDocument.h"
#include "kernel/KFile.h"
#include "kernel/KMemory.h"
#include "kernel/KVariable.h"
#include "project/ProjectClasses.h"
#include "project/ProjectResolution.h"
#include "project/StylusProject.h"
#include "project/StylusProjectObserver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>

using namespace filetest;
using namespace projecttest;

namespace {

const std::string kNotADocument = "Error while reading file: This file is not a TaleLoom Document File!";
const std::string kNewerVersion
    = "Load Project: It seems that this project is of a newer version; some data was ignored";

int32_t longAt(const std::vector<uint8_t>& bytes, size_t offset)
{
    return int32_t(uint32_t(bytes.at(offset)) << 24 | uint32_t(bytes.at(offset + 1)) << 16
                   | uint32_t(bytes.at(offset + 2)) << 8 | uint32_t(bytes.at(offset + 3)));
}

int16_t shortAt(const std::vector<uint8_t>& bytes, size_t offset)
{
    return int16_t(uint16_t(bytes.at(offset)) << 8 | uint16_t(bytes.at(offset + 1)));
}

void putLong(std::vector<uint8_t>& bytes, size_t offset, int32_t value)
{
    for (int i = 0; i < 4; ++i)
        bytes.at(offset + size_t(i)) = uint8_t(uint32_t(value) >> (24 - 8 * i));
}

// Every place where the longs of `pattern` stand in a row.
std::vector<size_t> findLongs(const std::vector<uint8_t>& bytes, const std::vector<int32_t>& pattern)
{
    std::vector<size_t> found;
    for (size_t i = 0; i + 4 * pattern.size() <= bytes.size(); ++i) {
        bool match = true;
        for (size_t k = 0; k < pattern.size() && match; ++k)
            match = longAt(bytes, i + 4 * k) == pattern[k];
        if (match)
            found.push_back(i);
    }
    return found;
}

int32_t busyCalls = 0;
void countBusy(bool busy) { busyCalls += busy ? 1 : 0; }

class CountingObserver : public StylusProjectObserver {
public:
    void commitEditing(StylusProject&) override { ++commits; }
    void fileChanged(StylusProject& project) override
    {
        ++fileChanges;
        ASSERT_TRUE(project.hasFile());
    }
    void tapeLoaded(StylusProject&) override { ++tapeLoads; }

    int32_t commits = 0;
    int32_t fileChanges = 0;
    int32_t tapeLoads = 0;
};

class ProjectTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        registerProjectClasses();
        StylusProject::setRetryDelay(0);
        StylusProject::setObserver(&observer);
        KDocument::setBusyProc(&countBusy);
        busyCalls = 0;
        std::filesystem::create_directory(folder.file("story"));
    }
    void TearDown() override
    {
        KDocument::setBusyProc(nullptr);
        StylusProject::setObserver(nullptr);
        StylusProject::setRetryDelay(StylusProject::kDefaultRetryDelay);
    }

    KFileReference documentFile(const std::string& name = "story/story.TPD") const
    {
        return KFileReference(folder.pathOf(name));
    }

    // A saved story of 320 by 200 pixels, and its project.
    StylusProjectPtr savedStory(const std::string& name = "story/story.TPD")
    {
        StylusProjectPtr project(new StylusProject());
        project->getTape()->setPageSize(KGraphicSize(320, 200));
        fillStory(*project->getTape());
        EXPECT_TRUE(project->save(documentFile(name)));
        return project;
    }

    // A project that already holds a story of one stroke and names a file.
    StylusProjectPtr openProject()
    {
        StylusProjectPtr project(new StylusProject());
        project->getTape()->addElement(*makeStroke({ { 1, 1 } }, 3, 0xFFFFFF));
        project->setFileAndFolders(documentFile("story/other.TPD"));
        return project;
    }

    TempFolder folder;
    HostScope scope;
    CountingObserver observer;
};

} // namespace

TEST_F(ProjectTest, FoldersFollowTheFile)
{
    StylusProjectPtr project(new StylusProject());
    EXPECT_FALSE(project->save()) << "an untitled project has no file to go to";
    KFileReference reference = documentFile();
    project->setFileAndFolders(reference);
    EXPECT_EQ(observer.fileChanges, 1);
    std::string root = folder.file("story");
    EXPECT_EQ(std::string(project->getFile()->getNativeText().c_str()), root + "/story.TPD");
    EXPECT_NE(project->getFile(), &reference);
    EXPECT_EQ(std::string(project->getDirectory()->getNativeText().c_str()), root);
    EXPECT_EQ(std::string(project->getMediaDirectory()->getNativeText().c_str()), root + "/Media");
    EXPECT_EQ(std::string(project->getActorsDirectory()->getNativeText().c_str()), root + "/Actors");
    EXPECT_FALSE(std::filesystem::exists(root + "/Media")) << "nothing is created here";

    // The object already held changes nothing.
    KFileReference* held = project->getFile();
    project->setFileAndFolders(*held);
    EXPECT_EQ(project->getFile(), held);
    EXPECT_EQ(observer.fileChanges, 1);

    // A new tape looks in the same folder; a cleared media folder leaves
    // the tape with the paths its elements stored.
    TapePtr other(new Tape());
    project->setTape(*other);
    ASSERT_NE(other->getMediaDirectory(), nullptr);
    EXPECT_EQ(other->getMediaDirectory()->getPath(), project->getMediaDirectory()->getPath());
    project->clearMediaDirectory();
    EXPECT_EQ(other->getMediaDirectory(), nullptr);
    project->clearTape();
    EXPECT_EQ(other->getOwnerProject(), nullptr);
    EXPECT_FALSE(project->hasTape());
}

TEST_F(ProjectTest, SavedStoryReadsBackElementByElement)
{
    StylusProjectPtr saved = savedStory();
    EXPECT_EQ(observer.commits, 1);
    EXPECT_EQ(scope.host.busyDepth, 0);
    Tape& original = *saved->getTape();
    EXPECT_FALSE(original.isModified());
    EXPECT_TRUE(original.getFlags().test(Tape::SavedOnce));
    EXPECT_EQ(std::string(saved->getFile()->getNativeText().c_str()), folder.file("story/story.TPD"));

    StylusProjectPtr loaded(new StylusProject());
    ASSERT_TRUE(loaded->load(documentFile()));
    EXPECT_TRUE(scope.host.alerts.empty());
    EXPECT_EQ(observer.tapeLoads, 1);
    EXPECT_EQ(scope.host.busyDepth, 0);
    Tape& read = *loaded->getTape();
    EXPECT_EQ(read.getOwnerProject(), loaded.get());
    ASSERT_EQ(read.getCount(), original.getCount());
    for (int32_t i = 0; i < read.getCount(); ++i) {
        EXPECT_EQ(jsonOf(read.getAt(i)), jsonOf(original.getAt(i))) << "element " << i;
        EXPECT_EQ(read.getAt(i)->getTape(), &read);
    }
    EXPECT_EQ(jsonOf(&read), jsonOf(&original));
    EXPECT_EQ(read.getPageSize(), KGraphicSize(320, 200));
    EXPECT_EQ(read.getPosition(), original.getPosition());
    EXPECT_TRUE(read.getFlags().test(Tape::SavedOnce));
    EXPECT_EQ(read.getAt(0)->getBookmark(), "Opening");
    EXPECT_FALSE(read.getAt(4)->isActive());
    // The pages the two tapes draw are the same at every position.
    for (int32_t position = 0; position <= read.getCount(); ++position)
        EXPECT_EQ(pageAt(read, position), pageAt(original, position)) << "position " << position;

    EXPECT_EQ(std::string(loaded->getMediaDirectory()->getNativeText().c_str()), folder.file("story/Media"));
    ASSERT_NE(read.getMediaDirectory(), nullptr);
    EXPECT_EQ(read.getMediaDirectory()->getPath(), loaded->getMediaDirectory()->getPath());

    // Saving again with the held file writes the same bytes.
    std::vector<uint8_t> first = bytesOf(folder.file("story/story.TPD"));
    EXPECT_TRUE(loaded->save());
    EXPECT_EQ(bytesOf(folder.file("story/story.TPD")), first);
}

TEST_F(ProjectTest, DocumentHeadHasTheFixedLayout)
{
    savedStory();
    std::vector<uint8_t> bytes = bytesOf(folder.file("story/story.TPD"));
    ASSERT_GT(bytes.size(), 200u);
    EXPECT_EQ(longAt(bytes, 0), 0x53544446);
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 4), "STDF");
    EXPECT_EQ(longAt(bytes, 4), 3);
    // The named bag's frame.
    EXPECT_EQ(longAt(bytes, 8), 0x0ABD9030);
    EXPECT_EQ(longAt(bytes, 12), 1);
    EXPECT_EQ(longAt(bytes, 16), int32_t(bytes.size()) - 24);
    EXPECT_EQ(longAt(bytes, 20), 1);
    EXPECT_EQ(longAt(bytes, 24), 1);
    EXPECT_EQ(longAt(bytes, 28), int32_t(bytes.size()) - 24);
    // The keys: a bag around an array of three strings.
    EXPECT_EQ(longAt(bytes, 32), 0x02F2A15A);
    EXPECT_EQ(longAt(bytes, 44), 1);
    EXPECT_EQ(longAt(bytes, 48), 1);
    EXPECT_EQ(longAt(bytes, 56), 0x2239018C);
    EXPECT_EQ(longAt(bytes, 68), 1);
    EXPECT_EQ(longAt(bytes, 80), 3);
    EXPECT_EQ(bytes[84], 0);
    size_t at = 85;
    for (const char* key : { "Tape", "DocumentW", "DocumentH" }) {
        SCOPED_TRACE(key);
        EXPECT_EQ(longAt(bytes, at), 0x66CFCAD0);
        EXPECT_EQ(longAt(bytes, at + 4), 0x66CFCAD0);
        EXPECT_EQ(longAt(bytes, at + 8), 1);
        EXPECT_EQ(shortAt(bytes, at + 28), 1);
        int32_t length = longAt(bytes, at + 30);
        ASSERT_EQ(length, int32_t(std::strlen(key)));
        EXPECT_EQ(std::string(bytes.begin() + long(at) + 34, bytes.begin() + long(at) + 34 + length), key);
        EXPECT_EQ(bytes.at(at + 34 + size_t(length)), 0);
        at += 4 + 16 + size_t(longAt(bytes, at + 12));
    }
    // The bag's tail.
    EXPECT_EQ(longAt(bytes, at), 3);
    EXPECT_EQ(longAt(bytes, at + 4), 1);
    EXPECT_EQ(longAt(bytes, at + 8), 0);
    at += 12;

    // The objects: the tape first, its first element at the documented
    // distance from the tape's tag.
    EXPECT_EQ(longAt(bytes, at), 0x02F2A15A);
    EXPECT_EQ(longAt(bytes, at + 24), 0x2239018C);
    EXPECT_EQ(longAt(bytes, at + 48), 3);
    EXPECT_EQ(bytes.at(at + 52), 0);
    at += 53;
    EXPECT_EQ(longAt(bytes, at), 0x057E67C0);
    size_t tape = at + 4;
    EXPECT_EQ(longAt(bytes, tape), 0x057E67C0);
    size_t firstElement = tape + 16 + 8 + 24 + 24 + 4 + 1;
    EXPECT_EQ(longAt(bytes, firstElement - 5), 5);
    EXPECT_EQ(longAt(bytes, firstElement), KClass::computeClassID("Stroke"));
    EXPECT_EQ(longAt(bytes, firstElement + 4), KClass::computeClassID("Stroke"));
    // Then the two sizes as long variables.
    at = tape + 16 + size_t(longAt(bytes, tape + 8));
    for (int32_t value : { 320, 200 }) {
        EXPECT_EQ(longAt(bytes, at), int32_t(0xADFB0FE0));
        EXPECT_EQ(longAt(bytes, at + 4), int32_t(0xADFB0FE0));
        EXPECT_EQ(longAt(bytes, at + 8), 1);
        EXPECT_EQ(longAt(bytes, at + 12), 14);
        EXPECT_EQ(longAt(bytes, at + 16), 1);
        EXPECT_EQ(longAt(bytes, at + 20), 1);
        EXPECT_EQ(longAt(bytes, at + 24), 14);
        EXPECT_EQ(shortAt(bytes, at + 28), 3);
        EXPECT_EQ(longAt(bytes, at + 30), value);
        at += 34;
    }
    EXPECT_EQ(at + 12, bytes.size());
}

TEST_F(ProjectTest, NewerDocumentsLoadWithAWarning)
{
    // A later version with nothing unknown in it.
    savedStory();
    std::vector<uint8_t> bytes = bytesOf(folder.file("story/story.TPD"));
    putLong(bytes, 4, 4);
    writeBytes(folder.file("story/story.TPD"), bytes);
    StylusProjectPtr project(new StylusProject());
    EXPECT_TRUE(project->load(documentFile()));
    EXPECT_EQ(scope.host.alerts, std::vector<std::string> { kNewerVersion });
    EXPECT_EQ(project->getTape()->getCount(), 5);

    // Version 3 with a tape section this program does not know: the lock
    // section, renumbered.
    scope.host.alerts.clear();
    StylusProjectPtr locked(new StylusProject());
    fillStory(*locked->getTape());
    locked->getTape()->setLockPosition(1);
    ASSERT_TRUE(locked->save(documentFile("story/locked.TPD")));
    bytes = bytesOf(folder.file("story/locked.TPD"));
    std::vector<size_t> lock = findLongs(bytes, { 2, 12, 1 });
    ASSERT_EQ(lock.size(), 1u);
    putLong(bytes, lock[0], 77);
    writeBytes(folder.file("story/locked.TPD"), bytes);
    StylusProjectPtr read(new StylusProject());
    EXPECT_TRUE(read->load(documentFile("story/locked.TPD")));
    EXPECT_EQ(scope.host.alerts, std::vector<std::string> { kNewerVersion });
    EXPECT_EQ(read->getTape()->getCount(), 5);
    EXPECT_EQ(read->getTape()->getLockPosition(), -1);
}

TEST_F(ProjectTest, FilesThatAreNoDocumentAreRefusedAfterASecondTry)
{
    savedStory("story/wrong.TPD");
    std::vector<uint8_t> bytes = bytesOf(folder.file("story/wrong.TPD"));
    bytes[0] = 'X';
    writeBytes(folder.file("story/wrong.TPD"), bytes);

    // A document of the right kind that has no tape.
    {
        KDocument noTape;
        noTape.setFile(*new KFileReference(folder.pathOf("story/notape.TPD")));
        noTape.setMagic(StylusProject::kDocumentMagic);
        noTape.setVersion(3);
        noTape.add("DocumentW", *new KVariable(int32_t(10)));
        noTape.add("Tape", *new KVariable(int32_t(5)));
        ASSERT_TRUE(noTape.save());
    }
    writeBytes(folder.file("story/empty.TPD"), {});

    for (const char* name : { "story/wrong.TPD", "story/notape.TPD", "story/empty.TPD", "story/missing.TPD" }) {
        SCOPED_TRACE(name);
        scope.host.alerts.clear();
        busyCalls = 0;
        StylusProjectPtr project = openProject();
        Tape* before = project->getTape();
        EXPECT_FALSE(project->load(documentFile(name)));
        EXPECT_EQ(scope.host.alerts, std::vector<std::string> { kNotADocument });
        EXPECT_EQ(busyCalls, 2) << "the document is read twice";
        // The story that was open stays as it was; only its name goes.
        EXPECT_EQ(project->getTape(), before);
        EXPECT_EQ(before->getCount(), 1);
        EXPECT_EQ(before->getOwnerProject(), project.get());
        EXPECT_FALSE(project->hasFile());
        EXPECT_FALSE(project->hasDirectory());
        EXPECT_EQ(observer.tapeLoads, 0);
        EXPECT_EQ(scope.host.busyDepth, 0);
    }

    // Old documents are not converted here.
    scope.host.alerts.clear();
    writeBytes(folder.file("story/old.stt"), { 1, 2, 3, 4 });
    StylusProjectPtr project = openProject();
    EXPECT_FALSE(project->load(documentFile("story/old.stt")));
    EXPECT_EQ(scope.host.alerts, std::vector<std::string> { kNotADocument });
    EXPECT_EQ(project->getTape()->getCount(), 1);
}

TEST_F(ProjectTest, LoadingMakesTheProjectFolders)
{
    savedStory();
    std::filesystem::remove_all(folder.file("story/Media"));
    std::filesystem::remove_all(folder.file("story/Actors"));
    std::filesystem::create_directory(folder.file("story/Actors"));
    writeBytes(folder.file("story/Actors/Bear.ACT"), { 9 });

    StylusProjectPtr project(new StylusProject());
    ASSERT_TRUE(project->load(documentFile()));
    EXPECT_TRUE(std::filesystem::is_directory(folder.file("story/Media")));
    EXPECT_TRUE(std::filesystem::is_directory(folder.file("story/Actors")));
    // What was in a folder stays.
    EXPECT_EQ(bytesOf(folder.file("story/Actors/Bear.ACT")), std::vector<uint8_t> { 9 });
    EXPECT_TRUE(project->getMediaDirectory()->doesExist());
    EXPECT_TRUE(project->getActorsDirectory()->doesExist());
}

TEST_F(ProjectTest, SizeEntriesOverrideTheTapesOwnSize)
{
    // Without the entries the tape keeps the size it was made with.
    {
        KDocument bare;
        bare.setFile(*new KFileReference(folder.pathOf("story/bare.TPD")));
        bare.setMagic(StylusProject::kDocumentMagic);
        bare.setVersion(3);
        TapePtr tape(new Tape());
        fillStory(*tape);
        bare.add("Tape", *tape);
        ASSERT_TRUE(bare.save());
    }
    scope.host.newPageSize = KGraphicSize(321, 123);
    StylusProjectPtr project(new StylusProject());
    ASSERT_TRUE(project->load(documentFile("story/bare.TPD")));
    EXPECT_EQ(project->getTape()->getPageSize(), KGraphicSize(321, 123));
    EXPECT_TRUE(scope.host.alerts.empty());

    // With them, each replaces its own half, cut to 16 bits.
    {
        KDocument sized;
        sized.setFile(*new KFileReference(folder.pathOf("story/sized.TPD")));
        sized.setMagic(StylusProject::kDocumentMagic);
        sized.setVersion(3);
        sized.add("DocumentH", *new KVariable(int32_t(0x10000 + 77)));
        sized.add("Tape", *new Tape());
        ASSERT_TRUE(sized.save());
    }
    ASSERT_TRUE(project->load(documentFile("story/sized.TPD")));
    EXPECT_EQ(project->getTape()->getPageSize(), KGraphicSize(321, 77));
}

TEST_F(ProjectTest, FailedSaveLeavesEverythingAsItWas)
{
    StylusProjectPtr project = savedStory();
    std::vector<uint8_t> before = bytesOf(folder.file("story/story.TPD"));
    project->getTape()->addElement(*makeStroke({ { 3, 3 } }, 3, 0x00FFFF));
    ASSERT_TRUE(project->getTape()->isModified());

    // A file in a folder that does not exist cannot be written.
    EXPECT_FALSE(project->save(documentFile("nowhere/story.TPD")));
    EXPECT_TRUE(project->getTape()->isModified());
    EXPECT_EQ(std::string(project->getFile()->getNativeText().c_str()), folder.file("story/story.TPD"));
    EXPECT_EQ(bytesOf(folder.file("story/story.TPD")), before);
    EXPECT_FALSE(std::filesystem::exists(folder.file("nowhere")));

    EXPECT_TRUE(project->save());
    EXPECT_FALSE(project->getTape()->isModified());
    EXPECT_NE(bytesOf(folder.file("story/story.TPD")), before);
}

TEST_F(ProjectTest, LoadsFromMemory)
{
    savedStory();
    std::vector<uint8_t> bytes = bytesOf(folder.file("story/story.TPD"));
    auto loadBytes = [](StylusProject& project, const std::vector<uint8_t>& data) {
        void* block = KMemory::allocate(data.size() + 1, false);
        std::memcpy(block, data.data(), data.size());
        KFile file;
        file.setMode(KFileModeReadBuffered);
        file.openFromRAM(block, int32_t(data.size()));
        return project.loadFrom(file);
    };
    StylusProjectPtr project(new StylusProject());
    ASSERT_TRUE(loadBytes(*project, bytes));
    EXPECT_EQ(project->getTape()->getCount(), 5);
    EXPECT_EQ(project->getTape()->getPageSize(), KGraphicSize(320, 200));
    EXPECT_FALSE(project->hasFile());

    // A document cut short is refused.
    Tape* held = project->getTape();
    EXPECT_FALSE(loadBytes(*project, std::vector<uint8_t>(bytes.begin(), bytes.begin() + long(bytes.size() / 2))));
    EXPECT_EQ(scope.host.alerts, std::vector<std::string> { kNotADocument });
    EXPECT_EQ(project->getTape(), held);
}

TEST_F(ProjectTest, CopiesAndClassStreamsCarryTheTape)
{
    StylusProjectPtr saved = savedStory();
    StylusProjectPtr copy(static_cast<StylusProject*>(saved->deepCopy()));
    ASSERT_NE(copy->getTape(), saved->getTape());
    EXPECT_EQ(copy->getTape()->getOwnerProject(), copy.get());
    EXPECT_EQ(jsonOf(copy->getTape()), jsonOf(saved->getTape()));
    EXPECT_EQ(copy->getTape()->getPageSize(), KGraphicSize(320, 200));
    ASSERT_TRUE(copy->hasFile());
    EXPECT_NE(copy->getFile(), saved->getFile());
    EXPECT_EQ(copy->getFile()->getPath(), saved->getFile()->getPath());
    EXPECT_FALSE(copy->hasDirectory());
    copy->getTape()->removeRange(0, 1);
    EXPECT_EQ(saved->getTape()->getCount(), 5);

    KFile out;
    out.setMode(KFileModeMemory);
    saved->writeToFile(out, 1);
    std::vector<uint8_t> stream(static_cast<const uint8_t*>(out.getMemoryData()),
                                static_cast<const uint8_t*>(out.getMemoryData()) + out.getMemorySize());

    // A section this program does not know is passed over.
    std::vector<uint8_t> longer = stream;
    for (int32_t value : { 9, 12, 0x01020304 })
        for (int shift = 24; shift >= 0; shift -= 8)
            longer.push_back(uint8_t(uint32_t(value) >> shift));
    putLong(longer, 8, longAt(longer, 8) + 12);
    putLong(longer, 12, 2);
    void* block = KMemory::allocate(longer.size(), false);
    std::memcpy(block, longer.data(), longer.size());
    KFile in;
    in.setMode(KFileModeReadBuffered);
    in.openFromRAM(block, int32_t(longer.size()));
    StylusProjectPtr read(new StylusProject());
    Tape* replaced = read->getTape();
    read->readFromFile(in);
    EXPECT_EQ(in.getError(), 0);
    EXPECT_EQ(in.getPosition(), int32_t(longer.size()));
    EXPECT_NE(read->getTape(), replaced);
    EXPECT_EQ(read->getTape()->getOwnerProject(), read.get());
    EXPECT_EQ(jsonOf(read->getTape()), jsonOf(saved->getTape()));
}

TEST(ProjectResolution, RefusesDocumentsLargerThanTheScreen)
{
    EXPECT_TRUE(projectResolutionRefusal(640, 480, 640, 480).isEmpty());
    EXPECT_TRUE(projectResolutionRefusal(100, 100, 1920, 1080).isEmpty());
    EXPECT_EQ(std::string(projectResolutionRefusal(1024, 768, 800, 800).c_str()),
              "This document's resolution (1024,768) exceeds the screen resolution (800,800); this document cannot "
              "be opened.");
    EXPECT_FALSE(projectResolutionRefusal(640, 481, 1920, 480).isEmpty());
}
