#include "AppTestSupport.h"

#include "app/MainPreferences.h"
#include "app/ProjectNameRules.h"
#include "app/UiText.h"
#include "kernel/KPath.h"
#include "kernel/KPreferences.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

// --- Settings ----------------------------------------------------------------

struct PageCase {
    int32_t stored;
    int16_t expected;
};

class PageSideTest : public ::testing::TestWithParam<PageCase> { };

TEST_P(PageSideTest, UnusableStoredSidesGiveTheDefault)
{
    EXPECT_EQ(MainPreferences::pageSide(GetParam().stored, 800), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Sides, PageSideTest,
                         ::testing::Values(PageCase { 0, 800 }, PageCase { -5, 800 }, PageCase { 40000, 800 },
                                           PageCase { 1024, 1024 }, PageCase { 32767, 32767 }));

TEST(MainPreferencesTest, LanguagesAreTakenInEnglishOrTheirOwnNameAndAnythingElseIsTheDefault)
{
    EXPECT_EQ(MainPreferences::normaliseLanguage("French"), KString("Fran\xE7"
                                                                    "ais"));
    EXPECT_EQ(MainPreferences::normaliseLanguage("fran\xE7"
                                                 "ais"),
              KString("Fran\xE7"
                      "ais"));
    EXPECT_EQ(MainPreferences::normaliseLanguage("Italian"), KString("Italiano"));
    EXPECT_EQ(MainPreferences::normaliseLanguage("Deutsch"), KString("Deutsch"));
    EXPECT_EQ(MainPreferences::normaliseLanguage("Klingon"), KString("English_TL"));
}

TEST(MainPreferencesTest, ReadsWhatIsStoredWhateverItsKindAndKeepsDefaultsForTheRest)
{
    KPreferences stored;
    stored.setString("ApplicationLanguage", "German");
    stored.setLong("AutoEdit", 1);
    stored.setDouble("SpeechSpeed", 65535.0);
    stored.setLong("EditingWindowMode", 7);
    stored.setLong("NewDocH", 0);
    stored.setBool("LimitActorSize", false);
    MainPreferences values;
    values.readFrom(stored);
    EXPECT_EQ(values.applicationLanguage, KString("Deutsch"));
    EXPECT_TRUE(values.autoEdit);
    EXPECT_EQ(values.speechSpeed, MainPreferences::kVoiceOwnSpeed);
    EXPECT_EQ(values.editingWindowMode, ScreenMode::Window);
    EXPECT_EQ(values.newDocW, 800);
    EXPECT_EQ(values.newDocH, 600);
    EXPECT_FALSE(values.limitActorSize);
    EXPECT_TRUE(values.highlightElements);

    KPreferences written;
    values.writeTo(written);
    EXPECT_FALSE(written.has("LimitActorSize"));
    EXPECT_FALSE(written.has("AllowDuplicatedActors"));
    EXPECT_EQ(written.getString("ApplicationLanguage"), KString("Deutsch"));
}

TEST(MainPreferencesTest, AGarbledSettingsFileIsKeptAsideAndTheDefaultsWritten)
{
    apptest::clearSettings();
    std::string folder = apptest::sandboxRoot() + "/config/TaleLoom";
    fs::create_directories(folder);
    std::ofstream(folder + "/MainPreferences.conf") << "[not closed\n\x01\x02 garbage";
    MainPreferencesStore store;
    MainPreferences values;
    EXPECT_FALSE(store.load(values));
    EXPECT_TRUE(store.wasSetAside());
    EXPECT_TRUE(fs::exists(folder + "/MainPreferences.conf.bad"));
    KPreferences stored;
    ASSERT_TRUE(stored.load("MainPreferences"));
    EXPECT_EQ(stored.getLong("NewDocW"), 800);
}

// --- Project names --------------------------------------------------------------

class ProjectNameTest : public ::testing::Test {
protected:
    void SetUp() override { path = apptest::freshFolder("names"); }
    KDirectory folder() const { return KDirectory(KPath(KString(path.c_str()), KPath::kHostPlatform)); }
    std::string path;
};

TEST_F(ProjectNameTest, TwentySixCharactersAreAcceptedAndTwentySevenRefusedBlanksAside)
{
    using ProjectNameRules::Problem;
    EXPECT_EQ(ProjectNameRules::check("  abcdefghijklmnopqrstuvwxyz  ", folder()), Problem::None);
    EXPECT_EQ(ProjectNameRules::check("abcdefghijklmnopqrstuvwxyz1", folder()), Problem::TooLong);
}

TEST_F(ProjectNameTest, NamesNoSystemCouldHoldAreRefused)
{
    using ProjectNameRules::Problem;
    for (const char* name : { "", "   ", ".", "..", ".hidden", "a/b", "a\\b", "a:b", "a*b", "a?b", "a\"b", "a<b", "a>b",
                              "a|b", "tab\there" })
        EXPECT_EQ(ProjectNameRules::check(name, folder()), Problem::IllegalCharacters) << name;
}

TEST_F(ProjectNameTest, AnEntryOfTheSameNameInAnyCaseIsTakenAndTheNextFreeNumberIsProposed)
{
    fs::create_directories(path + "/untitled");
    EXPECT_EQ(ProjectNameRules::check("Untitled", folder()), ProjectNameRules::Problem::Exists);
    EXPECT_EQ(ProjectNameRules::freeName("Untitled", folder()), KString("Untitled 2"));
    fs::create_directories(path + "/Untitled 2");
    EXPECT_EQ(ProjectNameRules::freeName("Untitled", folder()), KString("Untitled 3"));
    EXPECT_EQ(ProjectNameRules::freeName("Other", folder()), KString("Other"));
}

// --- Texts with places ------------------------------------------------------------

TEST(UiTextTest, NumberedPlacesTakeTheArgumentsInAnyOrder)
{
    EXPECT_EQ(uiFill("%2 before %1", { "one", "two" }), KString("two before one"));
    EXPECT_EQ(uiFill("100%1 sure, %3 stays", { "%" }), KString("100% sure, %3 stays"));
    EXPECT_EQ(uiText("Size %1x%2", 640, 480), KString("Size 640x480"));
}

} // namespace
