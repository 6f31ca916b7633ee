#include "AppTestSupport.h"

#include "app/RecoveryCopy.h"
#include "app/StylusActions.h"
#include "app/StylusWindow.h"
#include "app/ToolPalette.h"
#include "graphics/KImage.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "kernel/KPreferences.h"
#include "kmultimedia/StylusSpriteSystem.h"
#include "project/StylusProject.h"
#include "tape/Stroke.h"
#include "tape/Tape.h"
#include "tools/taleloom-tool/RenderCommand.h"
#include "windowing/KKeyEvent.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;
using namespace apptest;

namespace {

std::string sampleCopy()
{
    std::string folder = freshFolder("sample");
    fs::copy(std::string(std::getenv("TALELOOM_TEST_SOURCE_DIR")) + "/data/samples/Sample", folder + "/Sample",
             fs::copy_options::recursive);
    return folder + "/Sample/Sample.TPD";
}

KFileReference fileAt(const std::string& path)
{
    return KFileReference(KPath(KString(path.c_str()), KPath::kHostPlatform));
}

uint32_t pixelAt(KImage& image, int x, int y)
{
    KColor c = image.getDevice().getPixel(int16_t(x), int16_t(y));
    return uint32_t(c.getRed() >> 8) << 16 | uint32_t(c.getGreen() >> 8) << 8 | uint32_t(c.getBlue() >> 8);
}

class ApplicationTest : public AppTest { };

// --- Start -------------------------------------------------------------------

TEST_F(ApplicationTest, AFirstRunWritesTheSettingsMakesTheProjectsFolderAndShowsAnUntitledStory)
{
    runApp({ sampleCopy() }, [&](TestApplication& app) {
        StylusWindow* window = StylusWindow::current();
        ASSERT_NE(window, nullptr);
        EXPECT_EQ(window->getWindowMode(), WindowMode::TapeEditing);
        EXPECT_FALSE(app.isFullScreen()) << "an 800 by 600 page fits a window on a 1280 by 1024 screen";
        ASSERT_NE(app.getToolPalette(), nullptr);
        EXPECT_EQ(app.getToolPalette()->getSelectedButton(), 0);
        EXPECT_EQ(app.getToolPalette()->getBrushSize(), ToolPalette::kDefaultBrushSize);
        // The splash stays up at least its time however fast the start is.
        EXPECT_GE(layer.now(), 1000u + StylusApplication::kSplashMinimum);
    });
    EXPECT_TRUE(fs::exists(sandboxRoot() + "/config/TaleLoom/MainPreferences.conf"));
    EXPECT_TRUE(fs::is_directory(sandboxRoot() + "/home/TaleLoom Projects"));
    KPreferences stored;
    ASSERT_TRUE(stored.load("MainPreferences"));
    EXPECT_EQ(stored.getLong("NewDocW"), 800);
    EXPECT_FALSE(stored.has("LimitActorSize")) << "read, never written";
    EXPECT_FALSE(stored.has("AllowDuplicatedActors"));
}

TEST_F(ApplicationTest, ADocumentOnTheCommandLineOpensWithItsSavedPositionAndNoChanges)
{
    std::string story = sampleCopy();
    runApp({ story }, [&](TestApplication& app) {
        app.turn(3);
        StylusProject* project = app.getProject();
        ASSERT_NE(project, nullptr);
        ASSERT_TRUE(project->hasFile());
        EXPECT_EQ(std::string(project->getFile()->getNativeText().c_str()), story);
        EXPECT_FALSE(project->getTape()->isModified());
        EXPECT_LE(project->getTape()->getPosition(), project->getTape()->getCount());
        EXPECT_EQ(StylusWindow::current()->getTitle(), KString("Sample - TaleLoom"));
    });
    EXPECT_TRUE(layer.alerts().empty()) << "quitting an unchanged story asks nothing";
}

TEST_F(ApplicationTest, AMissingDocumentIsToldAndItsSwitchesAreIgnored)
{
    runApp({ "-S", "/nowhere/Missing.TPD" }, [&](TestApplication& app) {
        EXPECT_FALSE(app.isPlayOnOpen());
        EXPECT_EQ(app.startupQuestions, 1);
    });
    ASSERT_FALSE(layer.alerts().empty());
    EXPECT_NE(layer.alerts().front().text.find("Missing.TPD"), std::string::npos);
}

TEST_F(ApplicationTest, PlaySwitchesPlayTheStoryAndQuitAtItsEndWithoutAQuestion)
{
    std::string story = sampleCopy();
    bool played = false;
    runApp({ "-S", "-Q", story }, [&](TestApplication& app) {
        app.turn(2);
        Tape* tape = app.getProject()->getTape();
        played = tape->getPlayState() == Tape::PlayState::Playing;
        // The loop goes on until the story's end asks to quit.
        while (app.hasAppFlags(KApplication::Running) && tape->getPlayState() != Tape::PlayState::Stopped)
            app.turn();
    });
    EXPECT_TRUE(played);
    EXPECT_TRUE(layer.alerts().empty());
}

// --- Painting -------------------------------------------------------------------

TEST_F(ApplicationTest, AStrokeIsPaintedWhereTheMouseWentAndSavesAsTheToolRendersIt)
{
    std::string story = sampleCopy();
    std::string picture = freshFolder("stroke") + "/page.png";
    runApp({ story }, [&](TestApplication& app) {
        app.turn(2);
        Tape* tape = app.getProject()->getTape();
        tape->goToEnd();
        int32_t before = tape->getCount();
        app.getToolPalette()->selectColorButton(7); // red
        press(100, 100);
        for (int x = 110; x <= 200; x += 10)
            moveTo(x, 100);
        release(200, 100);
        ASSERT_EQ(tape->getCount(), before + 1);
        auto* stroke = dynamic_cast<Stroke*>(tape->getAt(before));
        ASSERT_NE(stroke, nullptr);
        EXPECT_EQ(stroke->getBrushWidth(), ToolPalette::kDefaultBrushSize);
        EXPECT_TRUE(tape->isModified());
        // Saving asks nothing for a named story.
        ASSERT_TRUE(StylusActions::current()->doSave());
        KImagePtr shown(new KImage());
        ASSERT_TRUE(StylusWindow::current()->composePage(*shown));
        EXPECT_EQ(pixelAt(*shown, 150, 100), 0xEF0000u);
        std::string reason;
        std::vector<std::string> warnings;
        ASSERT_TRUE(renderProjectPage(story, -1, picture, reason, warnings)) << reason;
        KImagePtr rendered(new KImage());
        ASSERT_TRUE(rendered->createFromPath(KString(picture.c_str())));
        for (int x = 100; x <= 200; x += 25)
            EXPECT_EQ(pixelAt(*rendered, x, 100), pixelAt(*shown, x, 100)) << x;
    });
    EXPECT_TRUE(layer.alerts().empty());
}

TEST_F(ApplicationTest, TheThinPenPaintsOnePixelAndGivesTheBrushBack)
{
    runApp({ sampleCopy() }, [&](TestApplication& app) {
        app.turn(2);
        Tape* tape = app.getProject()->getTape();
        tape->goToEnd();
        press(50, 50, KMouseKeys::Control);
        EXPECT_EQ(app.getToolPalette()->getBrushSize(), 1);
        moveTo(80, 50, KMouseKeys::Control);
        release(80, 50);
        auto* stroke = dynamic_cast<Stroke*>(tape->getAt(tape->getCount() - 1));
        ASSERT_NE(stroke, nullptr);
        EXPECT_EQ(stroke->getBrushWidth(), 1);
        EXPECT_EQ(app.getToolPalette()->getBrushSize(), ToolPalette::kDefaultBrushSize);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(ApplicationTest, BrushKeysKeepTheSizeWithinItsLimitsAndColourKeysPairTheRows)
{
    runApp({ sampleCopy() }, [&](TestApplication& app) {
        ToolPalette& palette = *app.getToolPalette();
        palette.setBrushSize(128);
        StylusWindow& window = *StylusWindow::current();
        KKeyEvent plus(KKeyEvent::KeyDown, &window, '+', 0);
        window.doKeyDown(plus);
        EXPECT_EQ(palette.getBrushSize(), 128);
        palette.setBrushSize(4);
        KKeyEvent minus(KKeyEvent::KeyDown, &window, '-', 0);
        window.doKeyDown(minus);
        EXPECT_EQ(palette.getBrushSize(), 4);
        window.doKeyDown(plus);
        EXPECT_EQ(palette.getBrushSize(), 5);
        KKeyEvent w(KKeyEvent::KeyDown, &window, 'w', 0);
        window.doKeyDown(w);
        EXPECT_EQ(palette.getSelectedButton(), 2);
        KKeyEvent a(KKeyEvent::KeyDown, &window, 'A', 0);
        window.doKeyDown(a);
        EXPECT_EQ(palette.getSelectedButton(), 1);
    });
}

// --- The save question ------------------------------------------------------------

TEST_F(ApplicationTest, QuittingWithChangesAsksOnceAndCancelKeepsEverything)
{
    std::string story = sampleCopy();
    auto before = fs::last_write_time(story);
    runApp({ story }, [&](TestApplication& app) {
        app.turn(2);
        Tape* tape = app.getProject()->getTape();
        tape->goToEnd();
        press(20, 20);
        release(40, 40);
        layer.answerMessageBox(KNativeAnswer::Cancel);
        EXPECT_EQ(StylusActions::current()->doQuit(), 3);
        ASSERT_EQ(layer.alerts().size(), 1u);
        EXPECT_EQ(layer.alerts().back().text, "Save Changes To \"Sample\"?");
        EXPECT_TRUE(tape->isModified());
        // No, this time: the program may end and the file stays.
        layer.answerMessageBox(KNativeAnswer::No);
        EXPECT_EQ(StylusActions::current()->doQuit(), 2);
    });
    EXPECT_EQ(fs::last_write_time(story), before);
}

TEST_F(ApplicationTest, AnUntitledStoryIsSavedAsANewProjectFolder)
{
    std::string folder = freshFolder("untitled");
    runApp({}, [&](TestApplication& app) {
        StylusActions& actions = *StylusActions::current();
        EXPECT_TRUE(actions.isUntitled());
        EXPECT_FALSE(actions.canSave());
        press(30, 30);
        release(60, 30);
        EXPECT_TRUE(actions.canSave());
        layer.answerMessageBox(KNativeAnswer::Yes);
        answerProjectDialog(folder, "  My Story ");
        EXPECT_EQ(actions.saveProjectChanges(), StylusActions::Yes);
        EXPECT_FALSE(actions.isUntitled());
        (void)app;
    });
    EXPECT_TRUE(fs::exists(folder + "/My Story/My Story.TPD"));
    EXPECT_TRUE(fs::is_directory(folder + "/My Story/Media"));
    EXPECT_TRUE(fs::is_directory(folder + "/My Story/Actors"));
}

TEST_F(ApplicationTest, ACancelledSaveAsKeepsTheProgramOpenAndTheWork)
{
    runApp({}, [&](TestApplication&) {
        StylusActions& actions = *StylusActions::current();
        press(30, 30);
        release(60, 30);
        layer.answerMessageBox(KNativeAnswer::Yes);
        cancelProjectDialog();
        EXPECT_EQ(actions.doQuit(), 3);
        EXPECT_TRUE(actions.hasChanges());
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(ApplicationTest, ADocumentTooLargeForTheScreenIsRefusedWithItsSizesAndTheOpenStoryStays)
{
    std::string folder = freshFolder("large");
    StylusApplication::registerClasses();
    {
        StylusProjectPtr big(new StylusProject());
        big->getTape()->setPageSize(KGraphicSize(3000, 2000));
        fs::create_directories(folder + "/Big");
        ASSERT_TRUE(big->save(fileAt(folder + "/Big/Big.TPD")));
    }
    runApp({}, [&](TestApplication& app) {
        StylusProject* before = app.getProject();
        EXPECT_FALSE(StylusActions::current()->openProject(fileAt(folder + "/Big/Big.TPD")));
        EXPECT_EQ(app.getProject(), before);
    });
    ASSERT_FALSE(layer.alerts().empty());
    EXPECT_EQ(layer.alerts().back().text, "This document's resolution (3000,2000) exceeds the screen resolution "
                                          "(1280,1024); this document cannot be opened.");
}

// --- Play ---------------------------------------------------------------------------

TEST_F(ApplicationTest, PlayOnAnEmptyTapeDoesNothingAndEscapeStopsAPlay)
{
    runApp({}, [&](TestApplication& app) {
        StylusActions& actions = *StylusActions::current();
        actions.play(false, false, false);
        EXPECT_EQ(StylusWindow::current()->getWindowMode(), WindowMode::TapeEditing);
        press(30, 30);
        release(60, 30);
        actions.play(false, false, false);
        EXPECT_EQ(StylusWindow::current()->getWindowMode(), WindowMode::Playing);
        StylusWindow& window = *StylusWindow::current();
        KKeyEvent pause(KKeyEvent::KeyDown, &window, 'p', 0);
        window.doKeyDown(pause);
        EXPECT_EQ(window.getWindowMode(), WindowMode::Paused);
        KKeyEvent escape(KKeyEvent::KeyDown, &window, KKeyEvent::Escape, 0);
        window.doKeyDown(escape);
        EXPECT_EQ(window.getWindowMode(), WindowMode::TapeEditing);
        EXPECT_EQ(app.getProject()->getTape()->getPlayState(), Tape::PlayState::Stopped);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

// --- Recovery -------------------------------------------------------------------------

TEST_F(ApplicationTest, UnsavedWorkIsKeptAsARecoveryCopyAndOfferedBack)
{
    std::string story = sampleCopy();
    RecoveryCopy::Found offered;
    runApp({ story }, [&](TestApplication& app) {
        app.turn(2);
        app.getProject()->getTape()->goToEnd();
        press(10, 10);
        release(90, 90);
        RecoveryCopy& recovery = *app.getRecovery();
        ASSERT_TRUE(recovery.update(*app.getProject()));
        std::vector<RecoveryCopy::Found> offers = recovery.findOffers();
        ASSERT_EQ(offers.size(), 1u);
        offered = offers.front();
        EXPECT_EQ(offered.source, story);
        StylusProjectPtr reopened(new StylusProject());
        ASSERT_TRUE(RecoveryCopy::reopen(offered, *reopened));
        EXPECT_EQ(reopened->getTape()->getCount(), app.getProject()->getTape()->getCount());
        EXPECT_TRUE(reopened->getTape()->isModified());
        EXPECT_EQ(std::string(reopened->getFile()->getNativeText().c_str()), story);
        // A clean save takes the copy away.
        ASSERT_TRUE(StylusActions::current()->doSave());
        recovery.update(*app.getProject());
        EXPECT_TRUE(recovery.findOffers().empty());
    });
    EXPECT_FALSE(fs::exists(std::string(offered.copy.getNativeText().c_str())));
}

} // namespace

namespace {

TEST_F(ApplicationTest, TheNextStartOffersTheWorkBackAndReopensItAsTheUnsavedProject)
{
    std::string story = sampleCopy();
    std::string kept = freshFolder("kept-recovery");
    int32_t elements = 0;
    std::string recoveryFolder;
    runApp({ story }, [&](TestApplication& app) {
        app.turn(2);
        app.getProject()->getTape()->goToEnd();
        press(10, 10);
        release(90, 90);
        elements = app.getProject()->getTape()->getCount();
        ASSERT_TRUE(app.getRecovery()->update(*app.getProject()));
        // What a session's end leaves behind; a normal quit takes it away.
        recoveryFolder = app.getRecovery()->getFolder().getNativeText().c_str();
        fs::copy(recoveryFolder, kept, fs::copy_options::recursive);
    });
    fs::create_directories(recoveryFolder);
    fs::copy(kept, recoveryFolder, fs::copy_options::recursive | fs::copy_options::overwrite_existing);
    runApp({}, [&](TestApplication& app) {
        layer.answerMessageBox(KNativeAnswer::Yes);
        EXPECT_TRUE(app.offerRecovery());
        EXPECT_EQ(app.getProject()->getTape()->getCount(), elements);
        EXPECT_TRUE(app.getProject()->getTape()->isModified());
        EXPECT_EQ(std::string(app.getProject()->getFile()->getNativeText().c_str()), story);
        layer.answerMessageBox(KNativeAnswer::No);
    });
    bool asked = false;
    for (const KNativeAlertRequest& alert : layer.alerts())
        asked = asked || alert.text == "Reopen the unsaved work of \"Sample\"?";
    EXPECT_TRUE(asked);
}

} // namespace
