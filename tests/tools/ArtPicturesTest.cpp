#include "tools/make-art/ArtPictures.h"
#include "app/ArtResources.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>

namespace {

std::string dataFolder()
{
    const char* source = std::getenv("TALELOOM_TEST_SOURCE_DIR");
    return source ? std::string(source) + "/data" : std::string();
}

// How many pixels differ by more than a rounding step in any channel.
// The rasteriser may round an edge pixel differently on another processor;
// a changed drawing changes far more than this allows.
int64_t differingPixels(const ArtPictures::Picture& a, const ArtPictures::Picture& b)
{
    int64_t count = 0;
    for (size_t i = 0; i < a.pixels.size(); ++i) {
        for (int shift : { 0, 8, 16, 24 }) {
            int difference = int((a.pixels[i] >> shift) & 0xFF) - int((b.pixels[i] >> shift) & 0xFF);
            if (std::abs(difference) > 3) {
                ++count;
                break;
            }
        }
    }
    return count;
}

} // namespace

// The pictures under data/ are what make-art draws now: a change to a
// drawing shows up here until the files are made again (make-art data).
TEST(ArtPictures, CommittedFilesAreWhatTheGeneratorDraws)
{
    ASSERT_FALSE(dataFolder().empty());
    std::set<std::string> made;
    for (const ArtPictures::Picture& picture : ArtPictures::makeAll()) {
        SCOPED_TRACE(picture.path);
        EXPECT_TRUE(made.insert(picture.path).second) << "drawn twice";
        ArtPictures::Picture committed;
        ASSERT_TRUE(ArtPictures::read(dataFolder() + "/" + picture.path, committed)) << "missing";
        ASSERT_EQ(committed.width, picture.width);
        ASSERT_EQ(committed.height, picture.height);
        ASSERT_EQ(committed.alpha, picture.alpha);
        EXPECT_LE(differingPixels(committed, picture), int64_t(picture.pixels.size()) / 200) << "out of date";
    }
    // Nothing stale lies beside them.
    for (const auto& entry : std::filesystem::directory_iterator(dataFolder() + "/art"))
        EXPECT_TRUE(made.count("art/" + entry.path().filename().string())) << entry.path();
}

// Every id the program asks for names a file the generator draws.
TEST(ArtPictures, EveryResourceIdNamesADrawnPicture)
{
    std::set<std::string> made;
    for (const ArtPictures::Picture& picture : ArtPictures::makeAll())
        made.insert(picture.path);
    for (int16_t id : ArtResources::allIds())
        EXPECT_TRUE(made.count(std::string("art/") + ArtResources::fileNameOf(id))) << id;
}

TEST(ArtPictures, WriteAndReadKeepThePixels)
{
    std::filesystem::path folder = std::filesystem::temp_directory_path() / "taleloom-art-test";
    std::filesystem::create_directories(folder);
    for (const ArtPictures::Picture& picture : ArtPictures::makeAll()) {
        if (picture.path != "art/startup.png" && picture.path != "icons/hicolor/48x48/apps/taleloom.png")
            continue;
        std::string file = (folder / "picture.png").string();
        ASSERT_TRUE(ArtPictures::write(picture, file));
        ArtPictures::Picture back;
        ASSERT_TRUE(ArtPictures::read(file, back));
        EXPECT_EQ(back.alpha, picture.alpha);
        EXPECT_EQ(back.pixels, picture.pixels) << picture.path;
    }
    std::filesystem::remove_all(folder);
    ArtPictures::Picture none;
    EXPECT_FALSE(ArtPictures::read((folder / "none.png").string(), none));
}
