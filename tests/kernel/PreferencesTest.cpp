#include "kernel/KErrorHandler.h"
#include "kernel/KNumber.h"
#include "kernel/KPreferences.h"
#include "tests/kernel/StringPrinter.h"
#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr const char* kSandboxMark = "TALELOOM_TEST_CONFIG_SANDBOX";
constexpr const char* kChildRole = "TALELOOM_TEST_PREFERENCES_CHILD";

std::string makeTempFolder()
{
    std::string pattern = (fs::temp_directory_path() / "taleloom-prefs-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        std::abort();
    return pattern;
}

// The store's folders are read once per process (GLib caches them), so every
// test of this program shares one private tree, set up before main. Children
// of the program (death tests, the restart test) keep what they inherit.
class ConfigSandbox {
public:
    ConfigSandbox()
    {
        if (const char* inherited = std::getenv(kSandboxMark)) {
            root = inherited;
            return;
        }
        root = makeTempFolder();
        owner = true;
        setenv(kSandboxMark, root.c_str(), 1);
        setenv("XDG_CONFIG_HOME", (root + "/user").c_str(), 1);
        setenv("XDG_CONFIG_DIRS", (root + "/system").c_str(), 1);
    }
    ~ConfigSandbox()
    {
        if (owner) {
            std::error_code ignored;
            fs::remove_all(root, ignored);
        }
    }
    ConfigSandbox(const ConfigSandbox&) = delete;
    ConfigSandbox& operator=(const ConfigSandbox&) = delete;

    std::string root;
    bool owner = false;
};

ConfigSandbox gSandbox;

std::string userFile(const char* group)
{
    return std::string(std::getenv("XDG_CONFIG_HOME")) + "/TaleLoom/" + group + ".conf";
}
std::string systemFile(const char* group) { return gSandbox.root + "/system/TaleLoom/" + group + ".conf"; }

void writeFile(const std::string& path, const std::string& content)
{
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << content;
}

std::string readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream content;
    content << in.rdbuf();
    return content.str();
}

// Records the messages shown to the user while in scope.
class MessageRecorder {
public:
    MessageRecorder()
    {
        shown().clear();
        KErrorHandler::setMessageProc(&record);
    }
    ~MessageRecorder() { KErrorHandler::setMessageProc(nullptr); }
    MessageRecorder(const MessageRecorder&) = delete;
    MessageRecorder& operator=(const MessageRecorder&) = delete;

    static std::vector<std::pair<std::string, std::string>>& shown()
    {
        static std::vector<std::pair<std::string, std::string>> list;
        return list;
    }

private:
    static void record(const char* text, const char* caption, int32_t) { shown().emplace_back(text, caption); }
};

int runChild(const char* test, const std::string& configHome)
{
    std::fflush(stdout);
    std::fflush(stderr);
    pid_t pid = fork();
    if (pid == 0) {
        setenv("XDG_CONFIG_HOME", configHome.c_str(), 1);
        setenv(kChildRole, "1", 1);
        std::string filter = std::string("--gtest_filter=") + test;
        execl("/proc/self/exe", "kernel_tests", filter.c_str(), "--gtest_brief=1", static_cast<char*>(nullptr));
        _exit(127);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void fillRestartSet(KPreferences& p)
{
    p.setString("ApplicationLanguage", "Fran\xE7"
                                       "ais");
    p.setLong("NewDocW", 1024);
    p.setBool("ChildMode", true);
    p.setDouble("SpeechSpeed", 0.75);
    p.setRectangle("Palette", 12, 34, 200, 100);
}

} // namespace

TEST(KPreferences, SettersReplaceInPlaceAndMissingKeysGiveDefaults)
{
    KPreferences p;
    p.setLong("A", 1);
    p.setString("B", "x");
    p.setLong("A", 2);
    EXPECT_EQ(p.getCount(), 2);
    EXPECT_EQ(p.getKey(0), "A");
    EXPECT_EQ(p.getKey(5), "");
    EXPECT_EQ(p.getLong("A"), 2);
    EXPECT_TRUE(p.has("B"));
    EXPECT_FALSE(p.has("b")); // keys are case-sensitive

    EXPECT_EQ(p.getLong("none"), 0);
    EXPECT_FALSE(p.getBool("none"));
    EXPECT_TRUE(p.getString("none").isEmpty());
    EXPECT_EQ(p.getDouble("none"), 0.0);
    EXPECT_EQ(p.getVariable("none"), nullptr);

    // A rectangle needs its mark in the base key.
    int16_t x = 1;
    int16_t y = 1;
    int16_t w = 1;
    int16_t h = 1;
    p.setRectangle("R", 1, 2, 3, 4);
    ASSERT_TRUE(p.getRectangle("R", x, y, w, h));
    EXPECT_EQ(x + y * 10 + w * 100 + h * 1000, 4321);
    p.setString("R", "Something else");
    EXPECT_FALSE(p.getRectangle("R", x, y, w, h));
    EXPECT_EQ(x | y | w | h, 0);

    // Copies are independent.
    KPreferences copy(p);
    copy.setLong("A", 99);
    copy.getVariable("B")->setString(KString("changed"));
    EXPECT_EQ(p.getLong("A"), 2);
    EXPECT_EQ(p.getString("B"), "x");
    p = copy;
    EXPECT_EQ(p.getLong("A"), 99);
    p.clear();
    EXPECT_EQ(p.getCount(), 0);
}

TEST(KPreferences, EveryStoredKindSurvivesSaveAndLoad)
{
    const std::string longText(600, 'L');
    const KString oddKey("# odd = key [x] 100% ");
    KPreferences out;
    out.setString("Text", "Caf\xE9 \x80\x81 = [x]\n second\\line");
    out.setString("Empty", "");
    out.setString("Long", longText.c_str());
    out.setString(oddKey, "odd");
    out.setChar("Initial", '\xE9');
    out.setBool("On", true);
    out.setBool("Off", false);
    out.setShort("Minus", -1);
    out.setShort("Max", 32767);
    out.setLong("Width", -123456789);
    out.setFloat("Rate", 0.25f);
    out.setDouble("Speed", 1.0 / 3.0);
    out.setRectangle("Window", 10, -20, 300, 400);
    ASSERT_TRUE(out.save("RoundTrip"));
    EXPECT_TRUE(KPreferences::exists("RoundTrip"));

    KPreferences in;
    ASSERT_TRUE(in.load("RoundTrip"));
    EXPECT_EQ(in.getCount(), out.getCount());
    for (int32_t i = 0; i < out.getCount(); ++i) {
        KString key = out.getKey(i);
        ASSERT_NE(in.getVariable(key), nullptr) << key.c_str();
        EXPECT_EQ(in.getVariable(key)->getType(), out.getVariable(key)->getType()) << key.c_str();
    }
    EXPECT_EQ(in.getString("Text"), "Caf\xE9 \x80\x81 = [x]\n second\\line");
    EXPECT_TRUE(in.has("Empty"));
    EXPECT_TRUE(in.getString("Empty").isEmpty());
    EXPECT_EQ(in.getString("Long").getLength(), 600); // kept whole, no 255-byte buffer
    EXPECT_EQ(in.getString(oddKey), "odd");
    EXPECT_EQ(in.getChar("Initial"), '\xE9');
    EXPECT_TRUE(in.getBool("On"));
    EXPECT_FALSE(in.getBool("Off"));
    EXPECT_EQ(in.getShort("Minus"), -1);
    EXPECT_EQ(in.getShort("Max"), 32767);
    EXPECT_EQ(in.getLong("Width"), -123456789);
    EXPECT_EQ(in.getFloat("Rate"), 0.25f);
    EXPECT_EQ(in.getDouble("Speed"), 1.0 / 3.0);
    int16_t x = 0;
    int16_t y = 0;
    int16_t w = 0;
    int16_t h = 0;
    ASSERT_TRUE(in.getRectangle("Window", x, y, w, h));
    EXPECT_EQ(x, 10);
    EXPECT_EQ(y, -20);
    EXPECT_EQ(w, 300);
    EXPECT_EQ(h, 400);

    // The file is readable text with typed values.
    std::string file = readFile(userFile("RoundTrip"));
    EXPECT_NE(file.find("Minus=integer:-1\n"), std::string::npos) << file;
    EXPECT_NE(file.find("On=binary:0101\n"), std::string::npos) << file;
    EXPECT_NE(file.find("Window=string:KGraphicRectangle\n"), std::string::npos) << file;
}

TEST(KPreferences, LoadMergesAndSaveKeepsStoredValuesThatAreNotInMemory)
{
    KPreferences first;
    first.setLong("A", 1);
    first.setLong("B", 2);
    ASSERT_TRUE(first.save("Merge"));
    KPreferences second;
    second.setLong("B", 3);
    second.setLong("C", 4);
    ASSERT_TRUE(second.save("Merge"));

    KPreferences in;
    in.setLong("D", 9);
    in.setLong("B", 0);
    ASSERT_TRUE(in.load("Merge"));
    EXPECT_EQ(in.getLong("A"), 1);
    EXPECT_EQ(in.getLong("B"), 3);
    EXPECT_EQ(in.getLong("C"), 4);
    EXPECT_EQ(in.getLong("D"), 9);
    EXPECT_EQ(in.getKey(0), "D");
    EXPECT_EQ(in.getKey(1), "B");
}

TEST(KPreferences, StoredValuesAreReadByTheRegistryRules)
{
    writeFile(userFile("HandMade"),
              "# written by hand\n[Preferences]\n"
              "Big=integer:65537\nMinus=integer:-1\nHuge=integer:4294967295\n"
              "Flag=binary:0105\nLetter=binary:0041\nLong=binary:03E8030000\n"
              "Escaped=string:tab\\there\n"
              "Good=integer:5\nNoType=12\nBadHex=binary:0G\nShort=binary:03E8\nEmptyBinary=binary:\n"
              "OutOfRange=integer:4294967296\n"
              "Future=float:1.0\nOdd=binary:0700\n");
    KPreferences in;
    MessageRecorder messages;
    testing::internal::CaptureStderr();
    ASSERT_TRUE(in.load("HandMade"));
    std::string warnings = testing::internal::GetCapturedStderr();

    EXPECT_EQ(in.getShort("Big"), 1); // the low 16 bits only
    EXPECT_EQ(in.getShort("Minus"), -1);
    EXPECT_EQ(in.getShort("Huge"), -1);
    EXPECT_TRUE(in.getBool("Flag"));
    EXPECT_EQ(in.getChar("Letter"), 'A');
    EXPECT_EQ(in.getLong("Long"), 1000);
    EXPECT_EQ(in.getString("Escaped"), "tab\there");
    EXPECT_EQ(in.getShort("Good"), 5);
    for (const char* skipped : { "NoType", "BadHex", "Short", "EmptyBinary", "OutOfRange", "Future", "Odd" }) {
        EXPECT_FALSE(in.has(skipped)) << skipped;
        bool malformed = std::string(skipped) != "Future" && std::string(skipped) != "Odd";
        EXPECT_EQ(warnings.find(skipped) != std::string::npos, malformed) << warnings;
    }
    ASSERT_EQ(MessageRecorder::shown().size(), 2u);
    EXPECT_NE(MessageRecorder::shown()[0].second.find("unimplemented register format"), std::string::npos);
    EXPECT_NE(MessageRecorder::shown()[1].second.find("unimplemented data format"), std::string::npos);
}

TEST(KPreferences, MachineWideGroupIsTheFallbackAndSavesGoToTheUser)
{
    const std::string machineText = "[Preferences]\nLeft=binary:03E8030000\nTop=binary:03E8030000\n";
    writeFile(systemFile("PrinterMargins"), machineText);
    EXPECT_TRUE(KPreferences::exists("PrinterMargins"));
    EXPECT_FALSE(fs::exists(userFile("PrinterMargins")));

    KPreferences margins;
    ASSERT_TRUE(margins.load("PrinterMargins"));
    EXPECT_EQ(margins.getLong("Left"), 1000);
    margins.setLong("Left", 500);
    ASSERT_TRUE(margins.save("PrinterMargins"));
    EXPECT_EQ(readFile(systemFile("PrinterMargins")), machineText);

    // The user's own group now wins, and it has everything it was given.
    KPreferences again;
    ASSERT_TRUE(again.load("PrinterMargins"));
    EXPECT_EQ(again.getLong("Left"), 500);
    EXPECT_EQ(again.getLong("Top"), 1000);
}

TEST(KPreferences, MissingGroupLeavesTheDefaultsSilently)
{
    KPreferences p;
    p.setLong("Width", 800);
    EXPECT_FALSE(KPreferences::exists("NeverWritten"));
    testing::internal::CaptureStderr();
    EXPECT_FALSE(p.load("NeverWritten"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(p.getLong("Width"), 800);
    EXPECT_EQ(p.getCount(), 1);

    // Names that are not one plain file name are never stored.
    testing::internal::CaptureStderr();
    EXPECT_FALSE(p.load("../Escape"));
    EXPECT_FALSE(p.save("../Escape"));
    EXPECT_FALSE(p.save(""));
    testing::internal::GetCapturedStderr();
    EXPECT_FALSE(fs::exists(std::string(std::getenv("XDG_CONFIG_HOME")) + "/Escape.conf"));
}

TEST(KPreferences, CorruptFileGivesTheDefaultsAndAWarningAndStaysUntilSaved)
{
    const std::string garbage = "\x01\x02 not a key file\nno group here\n\xFF\xFE";
    writeFile(userFile("Corrupt"), garbage);
    KPreferences p;
    p.setLong("Width", 800);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(p.load("Corrupt"));
    std::string warning = testing::internal::GetCapturedStderr();
    EXPECT_NE(warning.find("Corrupt.conf"), std::string::npos) << warning;
    EXPECT_EQ(p.getLong("Width"), 800);
    EXPECT_EQ(p.getCount(), 1);
    EXPECT_EQ(readFile(userFile("Corrupt")), garbage);

    // Saving on purpose replaces it.
    testing::internal::CaptureStderr();
    EXPECT_TRUE(p.save("Corrupt"));
    testing::internal::GetCapturedStderr();
    KPreferences in;
    ASSERT_TRUE(in.load("Corrupt"));
    EXPECT_EQ(in.getLong("Width"), 800);

    if (geteuid() != 0) { // root reads anything
        chmod(userFile("Corrupt").c_str(), 0);
        KPreferences locked;
        testing::internal::CaptureStderr();
        EXPECT_FALSE(locked.load("Corrupt"));
        EXPECT_NE(testing::internal::GetCapturedStderr().find("Corrupt.conf"), std::string::npos);
        EXPECT_EQ(locked.getCount(), 0);
        chmod(userFile("Corrupt").c_str(), 0600);
    }
}

TEST(KPreferences, SurviveARestartOfTheProgram)
{
    std::string configHome = makeTempFolder();
    EXPECT_EQ(runChild("KPreferencesChild.Write", configHome), 0);
    EXPECT_TRUE(fs::exists(configHome + "/TaleLoom/Restart.conf"));
    EXPECT_EQ(runChild("KPreferencesChild.Read", configHome), 0);
    EXPECT_TRUE(fs::exists(configHome + "/reader-ok")) << "the reading process did not run";
    std::error_code ignored;
    fs::remove_all(configHome, ignored);
}

// The two halves of the restart test, each in a process of its own.
TEST(KPreferencesChild, Write)
{
    if (!std::getenv(kChildRole))
        GTEST_SKIP() << "runs as a child of KPreferences.SurviveARestartOfTheProgram";
    KPreferences p;
    fillRestartSet(p);
    ASSERT_TRUE(p.save("Restart"));
}

TEST(KPreferencesChild, Read)
{
    if (!std::getenv(kChildRole))
        GTEST_SKIP() << "runs as a child of KPreferences.SurviveARestartOfTheProgram";
    KPreferences expected;
    fillRestartSet(expected);
    KPreferences p;
    ASSERT_TRUE(p.load("Restart"));
    EXPECT_EQ(p.getString("ApplicationLanguage"), expected.getString("ApplicationLanguage"));
    EXPECT_EQ(p.getLong("NewDocW"), 1024);
    EXPECT_TRUE(p.getBool("ChildMode"));
    EXPECT_EQ(p.getDouble("SpeechSpeed"), 0.75);
    int16_t x = 0;
    int16_t y = 0;
    int16_t w = 0;
    int16_t h = 0;
    EXPECT_TRUE(p.getRectangle("Palette", x, y, w, h));
    EXPECT_EQ(w, 200);
    EXPECT_EQ(p.getCount(), expected.getCount());
    if (!testing::Test::HasFailure())
        writeFile(std::string(std::getenv("XDG_CONFIG_HOME")) + "/reader-ok", "ok");
}
