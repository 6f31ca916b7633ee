#include "tests/kernel/FileTestSupport.h"

#include "app/AppClasses.h"
#include "tools/make-sample-story/SampleStory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

using namespace filetest;

namespace {

std::vector<char> fileBytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::vector<char>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

} // namespace

// The story that ships in data/samples is what the generator makes now: a
// change to the story or to a file format shows up here until the files are
// made again (make-sample-story data/samples).
TEST(SampleStory, BundledFilesAreWhatTheGeneratorMakes)
{
    registerDocumentClasses();
    const char* source = std::getenv("TALELOOM_TEST_SOURCE_DIR");
    ASSERT_NE(source, nullptr);
    TempFolder folder;
    std::string reason;
    ASSERT_TRUE(SampleStory::write(folder.path(), reason)) << reason;

    std::string project = std::string("/") + SampleStory::kProjectName;
    std::string actor = project + "/Actors/" + SampleStory::kActorName + ".ACT";
    std::string document = project + "/" + SampleStory::kProjectName + ".TPD";
    std::string chime = project + "/Media/" + SampleStory::kChimeName;
    for (const std::string& file : { document, actor, chime }) {
        std::vector<char> made = fileBytes(folder.path() + file);
        ASSERT_FALSE(made.empty()) << file;
        EXPECT_EQ(made, fileBytes(std::string(source) + "/data/samples" + file)) << file << " is out of date";
    }
}
