#include "app/StylusTapeHost.h"
#include "kernel/KDirectory.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "kernel/KPreferences.h"
#include "kmultimedia/KMovieSupport.h"
#include "windowing/KApplication.h"
#include "windowing/KBusyCursor.h"
#include "windowing/KCursorManager.h"
#include "windowing/KDialogHandler.h"
#include "windowing/KEvent.h"
#include "windowing/KEventTranslator.h"
#include "windowing/KNativeRecord.h"
#include "windowing/KServices.h"
#include "windowing/KTimerManager.h"
#include "windowing/testing/KFakeNativeLayer.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace fs = std::filesystem;

namespace {

// A host whose speech engine can be taken away.
class ProbedHost : public StylusTapeHost {
public:
    bool speechPresent = true;
    bool soundPresent = true;

protected:
    bool hasSpeechEngine() override { return speechPresent; }
    bool hasSoundOutput() override { return soundPresent; }
};

class StylusTapeHostTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        KNativeLayer::install(&layer);
        kServices() = KServices();
        kksResetTranslator();
    }
    void TearDown() override
    {
        application.clear();
        KTimerManager::destroy();
        kServices() = KServices();
        kksResetTranslator();
        KNativeLayer::install(nullptr);
    }

    // The loop's idle passes are what show a gathered notice.
    KApplication& startApplication()
    {
        application = new KApplication();
        // Each turn waits a little at most: the tests script no input.
        application->setAppFlags(KApplication::NeverBlock);
        return *application;
    }

    KFakeNativeLayer layer;
    KPtr<KApplication> application;
};

KPath pathOf(const std::string& text) { return KPath(KString(text.c_str()), KPath::LinuxPlatform); }

void writeFile(const std::string& path, const std::string& content)
{
    std::ofstream(path, std::ios::binary) << content;
}

std::string readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream content;
    content << in.rdbuf();
    return content.str();
}

void deliverMouse(int32_t message, int32_t keys)
{
    KNativeRecord record;
    record.message = message;
    record.param1 = keys;
    KThingPtr event(kksCreateEvent(record));
}

TEST_F(StylusTapeHostTest, RefusedNamesAreToldInOneNoticeWhenTheLoopIsIdle)
{
    KApplication& loop = startApplication();
    StylusTapeHost host;
    host.refuseMediaName("../escape.wav");
    host.refuseMediaName("/etc/passwd");
    host.refuseMediaName("../escape.wav");
    EXPECT_TRUE(layer.alerts().empty()) << "a notice must wait for the load to finish";

    loop.doOneLoop();
    ASSERT_EQ(layer.alerts().size(), 1u);
    const KNativeAlertRequest& notice = layer.alerts()[0];
    EXPECT_EQ(notice.title, "Load Project");
    EXPECT_EQ(notice.text.find("../escape.wav"), notice.text.rfind("../escape.wav")) << "listed twice";
    EXPECT_NE(notice.text.find("/etc/passwd"), std::string::npos);
    EXPECT_FALSE(host.hasPendingNotice());
    EXPECT_FALSE(loop.hasIdlers()) << "an idler left in the list keeps the loop from blocking";

    layer.advance(50);
    loop.doOneLoop();
    host.flushNotices();
    EXPECT_EQ(layer.alerts().size(), 1u);

    // A host that goes with a notice scheduled leaves no idler behind that
    // could call it.
    {
        StylusTapeHost gone;
        gone.refuseMediaName("../b.png");
    }
    EXPECT_FALSE(loop.hasIdlers());
}

TEST_F(StylusTapeHostTest, BusyCursorNestsAndAStrayEndLeavesOtherWaitsAlone)
{
    KPtr<KCursorManager> cursor(new KCursorManager());
    StylusTapeHost host;

    host.beginBusyCursor();
    host.beginBusyCursor();
    EXPECT_EQ(cursor->getCursor(), KCursorShape::Wait);
    host.endBusyCursor();
    EXPECT_EQ(cursor->getCursor(), KCursorShape::Wait) << "the outer operation is still busy";
    host.endBusyCursor();
    EXPECT_EQ(cursor->getCursor(), KCursorShape::Normal);
    EXPECT_EQ(layer.cursorShape(), KCursorShape::Normal);

    {
        KBusyCursor saving;
        host.endBusyCursor();
        EXPECT_EQ(cursor->getCursor(), KCursorShape::Wait);
        EXPECT_EQ(host.getBusyDepth(), 0);
    }
    EXPECT_EQ(cursor->getCursor(), KCursorShape::Normal);
}

TEST_F(StylusTapeHostTest, MissingEnginesAreWarnedAboutOncePerRun)
{
    ProbedHost host;
    host.checkSpeechEngine();
    EXPECT_TRUE(layer.alerts().empty());

    host.speechPresent = false;
    host.checkSpeechEngine();
    host.checkSpeechEngine();
    ASSERT_EQ(layer.alerts().size(), 1u);
    EXPECT_EQ(layer.alerts()[0].text, "No Speech Synthesis is installed!");

    // A movie support that started no player: no engine.
    KPtr<KMovieSupport> movies(new KMovieSupport());
    host.checkMovieEngine();
    host.checkMovieEngine();
    ASSERT_EQ(layer.alerts().size(), 2u);
    EXPECT_EQ(layer.alerts()[1].text, "No Movie Player is installed!");
    host.checkSpeechEngine();
    EXPECT_EQ(layer.alerts().size(), 2u);
}

TEST_F(StylusTapeHostTest, NoSoundOutputAndASpeechThatCannotStartAreToldOnce)
{
    ProbedHost host;
    host.checkSoundOutput();
    EXPECT_TRUE(layer.alerts().empty());
    host.soundPresent = false;
    host.checkSoundOutput();
    host.checkSoundOutput();
    host.warnSpeechFailed("Klingon");
    host.warnSpeechFailed("Elvish");
    ASSERT_EQ(layer.alerts().size(), 2u);
    EXPECT_EQ(layer.alerts()[0].text, "No Sound Output is available!");
    EXPECT_EQ(layer.alerts()[1].text, "The voice Klingon could not speak.");
}

TEST_F(StylusTapeHostTest, SpeechSpeedIsTheSettingsValueOnlyWhenCustomAndNotTheVoicesOwn)
{
    StylusTapeHost host;
    KPreferences stored;
    host.setPreferences(stored);
    EXPECT_LT(host.speechSpeed(), 0.0);
    stored.setDouble("SpeechSpeed", 30.0);
    host.setPreferences(stored);
    EXPECT_LT(host.speechSpeed(), 0.0) << "not custom";
    stored.setBool("CustomSpeechSpeed", true);
    host.setPreferences(stored);
    EXPECT_DOUBLE_EQ(host.speechSpeed(), 0.3);
    stored.setLong("SpeechSpeed", 75);
    host.setPreferences(stored);
    EXPECT_DOUBLE_EQ(host.speechSpeed(), 0.75);
    for (double own : { 50.0, 65535.0, -1.0 }) {
        stored.setDouble("SpeechSpeed", own);
        host.setPreferences(stored);
        EXPECT_LT(host.speechSpeed(), 0.0) << own;
    }
}

TEST_F(StylusTapeHostTest, FindMissingFileAsksInTheFolderAndACancelGivesUp)
{
    StylusTapeHost host;
    KDirectoryPtr search(new KDirectory(pathOf("/home/child/story/Media/")));
    KPath lost = pathOf("/old/place/dog.wav");
    KFileReferencePtr file(new KFileReference(lost));

    EXPECT_TRUE(host.findMissingFile(*file, *search, nullptr)) << "with nobody to ask the search gives up";
    EXPECT_TRUE(layer.chooserRequests().empty());

    KPtr<KDialogHandler> dialogs(new KDialogHandler());
    EXPECT_TRUE(host.findMissingFile(*file, *search, nullptr));
    EXPECT_TRUE(file->getPath() == lost);
    ASSERT_EQ(layer.chooserRequests().size(), 1u);
    const KNativeChooserRequest& asked = layer.chooserRequests()[0];
    EXPECT_EQ(asked.mode, KNativeChooserRequest::Open);
    EXPECT_EQ(asked.folder, "/home/child/story/Media/");
    EXPECT_EQ(asked.title.rfind("Look for missing file", 0), 0u);
    EXPECT_NE(asked.title.find("dog.wav"), std::string::npos);

    layer.answerChooser({ true, "/mnt/stick/dog.wav" });
    EXPECT_FALSE(host.findMissingFile(*file, *search, nullptr));
    EXPECT_STREQ(file->getNativeText().c_str(), "/mnt/stick/dog.wav");
}

TEST_F(StylusTapeHostTest, CollectMediaFileCopiesEachFileOnce)
{
    std::string root = (fs::temp_directory_path() / "taleloom-host-XXXXXX").string();
    ASSERT_TRUE(mkdtemp(root.data()));
    std::string from = root + "/story/";
    std::string to = root + "/published/";
    fs::create_directories(from);
    fs::create_directories(to);
    writeFile(from + "dog.wav", "woof");
    KDirectoryPtr source(new KDirectory(pathOf(from)));
    KDirectoryPtr target(new KDirectory(pathOf(to)));
    StylusTapeHost host;

    KFileReferencePtr first(new KFileReference(pathOf(from + "dog.wav")));
    host.collectMediaFile(*first, *source, *target);
    EXPECT_EQ(readFile(to + "dog.wav"), "woof");
    EXPECT_STREQ(first->getNativeText().c_str(), (to + "dog.wav").c_str());

    // A second user of the same file finds the copy and takes it as it is.
    writeFile(to + "dog.wav", "copied before");
    KFileReferencePtr second(new KFileReference(pathOf(from + "dog.wav")));
    host.collectMediaFile(*second, *source, *target);
    host.collectMediaFile(*first, *source, *target);
    EXPECT_EQ(readFile(to + "dog.wav"), "copied before");
    EXPECT_STREQ(second->getNativeText().c_str(), (to + "dog.wav").c_str());
    EXPECT_STREQ(first->getNativeText().c_str(), (to + "dog.wav").c_str());

    // A file that is gone stays named where it was, and nothing appears.
    KFileReferencePtr gone(new KFileReference(pathOf(from + "cat.wav")));
    host.collectMediaFile(*gone, *source, *target);
    EXPECT_STREQ(gone->getNativeText().c_str(), (from + "cat.wav").c_str());
    EXPECT_FALSE(fs::exists(to + "cat.wav"));
    fs::remove_all(root);
}

TEST_F(StylusTapeHostTest, PreferencesAnswerWhateverKindTheyWereStoredAs)
{
    StylusTapeHost host;
    KPreferences none;
    host.setPreferences(none);
    EXPECT_FALSE(host.autoEditCurrentElement());
    EXPECT_TRUE(host.highlightCurrentElement()) << "highlighting is on unless turned off";
    EXPECT_EQ(host.newDocumentPageSize(), KGraphicSize(800, 600));

    KPreferences stored;
    stored.setBool("AutoEdit", true);
    stored.setShort("HighlightElements", 0);
    stored.setLong("NewDocW", 1024);
    stored.setShort("NewDocH", 0);
    host.setPreferences(stored);
    EXPECT_TRUE(host.autoEditCurrentElement());
    EXPECT_FALSE(host.highlightCurrentElement());
    EXPECT_EQ(host.newDocumentPageSize(), KGraphicSize(1024, 600));
}

TEST_F(StylusTapeHostTest, MouseButtonFollowsThePressesDelivered)
{
    startApplication();
    StylusTapeHost host;
    EXPECT_FALSE(host.isMouseButtonDown());
    deliverMouse(KNativeMessage::LeftDown, KMouseKeys::LeftButton);
    EXPECT_TRUE(host.isMouseButtonDown());
    deliverMouse(KNativeMessage::LeftUp, 0);
    EXPECT_FALSE(host.isMouseButtonDown());
}

} // namespace
