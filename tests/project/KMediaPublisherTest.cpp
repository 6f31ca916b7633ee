#include "tests/kernel/FileTestSupport.h"

#include "project/KMediaPublisher.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using namespace filetest;

namespace {

void writeFile(const std::string& path, const std::string& bytes)
{
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

} // namespace

TEST(KMediaPublisher, NamesThatEveryFileSystemTakes)
{
    EXPECT_EQ(KMediaPublisher::safeName("Été à la mer.wav"), "Ete a la mer.wav");
    EXPECT_EQ(KMediaPublisher::safeName("Straße Œuvre.png"), "Strasse _uvre.png");
    EXPECT_EQ(KMediaPublisher::safeName("a:b/c\\d*e?f\"g<h>i|j"), "a_b_c_d_e_f_g_h_i_j");
    EXPECT_EQ(KMediaPublisher::safeName(std::string("tab\there\x01")), "tab_here_");
    EXPECT_EQ(KMediaPublisher::safeName("trailing. . "), "trailing");
    // A broken UTF-8 sequence is one refused character, never a read past
    // the end.
    EXPECT_EQ(KMediaPublisher::safeName("bad\xC3"), "bad_");
    EXPECT_EQ(KMediaPublisher::safeName("\xE2\x82"), "__");
}

TEST(KMediaPublisher, EachSourceIsCopiedOnceUnderAFreeShortName)
{
    TempFolder folder;
    std::string target = folder.file("target");
    std::filesystem::create_directories(target);
    writeFile(folder.file("one/chime.wav"), "first");
    writeFile(folder.file("two/chime.wav"), "second");
    std::string longName = folder.file("one/" + std::string(26 - 4, 'x') + "yyyy.wav");
    writeFile(longName, "long");

    KMediaPublisherPtr publisher(new KMediaPublisher());
    publisher->setDirectory(target);
    std::string name;
    ASSERT_TRUE(publisher->publish(folder.file("one/chime.wav"), name));
    EXPECT_EQ(name, "chime.wav");
    // Another file of the same name gets "-2"; the first one used again keeps
    // its name and is not copied twice.
    ASSERT_TRUE(publisher->publish(folder.file("two/chime.wav"), name));
    EXPECT_EQ(name, "chime-2.wav");
    ASSERT_TRUE(publisher->publish(folder.file("one/chime.wav"), name));
    EXPECT_EQ(name, "chime.wav");
    EXPECT_EQ(publisher->getBytesCopied(), 5 + 6);

    // 26 characters with a three-letter extension: cut to 22 before ".wav".
    ASSERT_TRUE(publisher->publish(longName, name));
    EXPECT_EQ(name, std::string(22, 'x') + ".wav");
    EXPECT_EQ(name.size(), 26u);
    std::ifstream copied(target + "/chime-2.wav");
    std::string bytes;
    copied >> bytes;
    EXPECT_EQ(bytes, "second");

    // A missing file still gets a name of its own for its elements.
    EXPECT_EQ(publisher->reserveName(folder.file("gone/chime.wav")), "chime-3.wav");
    EXPECT_FALSE(std::filesystem::exists(target + "/chime-3.wav"));
}
