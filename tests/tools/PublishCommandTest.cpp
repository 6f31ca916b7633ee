#include "tests/kernel/FileTestSupport.h"

#include "app/AppClasses.h"
#include "app/Publication.h"
#include "kernel/KTextCodec.h"
#include "project/StylusProject.h"
#include "tools/make-sample-story/SampleStory.h"
#include "tools/taleloom-tool/RenderCommand.h"
#include "tools/taleloom-tool/ToolProject.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

using namespace filetest;
namespace fs = std::filesystem;

namespace {

std::string fileBytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// Every file and folder under `root`, relative, with the mode of programs.
std::set<std::string> listing(const std::string& root)
{
    std::set<std::string> entries;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        std::string name = fs::relative(entry.path(), root).string();
        if (entry.is_directory())
            name += "/";
        else if ((entry.status().permissions() & fs::perms::owner_exec) != fs::perms::none)
            name += " (program)";
        entries.insert(name);
    }
    return entries;
}

class PublishTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        registerDocumentClasses();
        std::string reason;
        ASSERT_TRUE(SampleStory::write(folder.path(), reason)) << reason;
        story = folder.path() + "/" + SampleStory::kProjectName + "/" + SampleStory::kProjectName + ".TPD";
        player = folder.file("taleloom-player");
        std::ofstream(player) << "#!/bin/sh\n";
        fs::create_directories(folder.file("out"));
    }
    bool publish(const std::string& name, PublishReport& report, bool withPlayer = true)
    {
        StylusProjectPtr project(new StylusProject());
        std::string reason;
        std::vector<std::string> warnings;
        EXPECT_TRUE(loadToolProject(story, *project, reason, warnings)) << reason;
        PublishRequest request;
        request.folder = folder.file("out");
        request.name = KTextCodec::fromUtf8(name);
        request.includePlayer = withPlayer;
        request.playerPath = player;
        request.language = KTextCodec::fromUtf8("Français");
        return publishStory(*project, request, report);
    }

    TempFolder folder;
    std::string story;
    std::string player;
};

} // namespace

TEST_F(PublishTest, APublicationIsAWholeFolderThatPlaysElsewhere)
{
    PublishReport report;
    ASSERT_TRUE(publish("Bedtime", report)) << KTextCodec::toUtf8(report.refusal);
    std::string root = folder.file("out/Bedtime");
    std::set<std::string> expected { "data.TPD",
                                     "Media/",
                                     "Media/" + std::string(SampleStory::kChimeName),
                                     "Actors/",
                                     "Actors/Walker.ACT",
                                     "Start Here! (program)",
                                     "player.ini",
                                     "Read Me.txt" };
    EXPECT_EQ(listing(root), expected);
    EXPECT_TRUE(report.missing.empty());
    EXPECT_NE(fileBytes(root + "/player.ini").find("Language=Français"), std::string::npos);

    // Moved and read-only, it renders as the source does and names no path
    // of the source.
    fs::rename(root, folder.file("stick"));
    fs::permissions(folder.file("stick"), fs::perms::owner_write, fs::perm_options::remove);
    std::string moved = folder.file("stick/data.TPD");
    EXPECT_EQ(fileBytes(moved).find(folder.path()), std::string::npos);
    for (int32_t position : { 3, 9, 20, -1 }) {
        std::string reason;
        std::vector<std::string> warnings;
        std::string mine = folder.file("a.png");
        std::string theirs = folder.file("b.png");
        ASSERT_TRUE(renderProjectPage(story, position, mine, reason, warnings)) << reason;
        ASSERT_TRUE(renderProjectPage(moved, position, theirs, reason, warnings)) << reason;
        EXPECT_TRUE(warnings.empty());
        EXPECT_EQ(fileBytes(mine), fileBytes(theirs)) << "at " << position;
    }
    fs::permissions(folder.file("stick"), fs::perms::owner_write, fs::perm_options::add);
}

TEST_F(PublishTest, ATakenNameIsRefusedAndAMissingPlayerOrMediumIsToldAtTheEnd)
{
    PublishReport report;
    ASSERT_TRUE(publish("Bedtime", report, false));
    EXPECT_FALSE(fs::exists(folder.file("out/Bedtime/Start Here!")));
    std::set<std::string> before = listing(folder.file("out"));
    std::string document = fileBytes(folder.file("out/Bedtime/data.TPD"));

    EXPECT_FALSE(publish("Bedtime", report));
    EXPECT_TRUE(report.nameTaken);
    EXPECT_EQ(KTextCodec::toUtf8(report.refusal),
              "The file or folder \"Bedtime\" already exists; please choose another name.");
    EXPECT_EQ(listing(folder.file("out")), before);
    EXPECT_EQ(fileBytes(folder.file("out/Bedtime/data.TPD")), document);

    fs::remove(player);
    fs::remove(folder.path() + "/" + SampleStory::kProjectName + "/Media/" + SampleStory::kChimeName);
    ASSERT_TRUE(publish("Without", report));
    EXPECT_TRUE(report.playerMissing);
    ASSERT_EQ(report.missing.size(), 1u);
    KString notes = publishNotes(report);
    EXPECT_NE(KTextCodec::toUtf8(notes).find("make sure it is in the same folder"), std::string::npos);
    EXPECT_NE(KTextCodec::toUtf8(notes).find(SampleStory::kChimeName), std::string::npos);
    EXPECT_TRUE(fs::exists(folder.file("out/Without/data.TPD")));
}

// A target where no folder can be made (here a file stands where the
// folder should be, which holds for the superuser as well): one message
// naming the place, and nothing made.
TEST_F(PublishTest, ATargetThatCannotBeWrittenLeavesNothingBehind)
{
    fs::remove_all(folder.file("out"));
    std::ofstream(folder.file("out")) << "not a folder";
    PublishReport report;
    EXPECT_FALSE(publish("Bedtime", report));
    EXPECT_FALSE(report.nameTaken);
    EXPECT_NE(KTextCodec::toUtf8(report.refusal).find(folder.file("out/Bedtime")), std::string::npos);
    EXPECT_EQ(fileBytes(folder.file("out")), "not a folder");
}
