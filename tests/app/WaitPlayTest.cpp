// The main window with the timed elements: inserting them, the wait's
// blinking marker and a press anywhere that answers it.

#include "AppTestSupport.h"
#include "DialogTestSupport.h"

#include "app/ElementDialog.h"
#include "app/StylusActions.h"
#include "app/StylusWindow.h"
#include "kmultimedia/KSprite.h"
#include "project/StylusProject.h"
#include "tape/StylusPause.h"
#include "tape/Tape.h"
#include "tape/WaitObject.h"
#include "windowing/KKeyEvent.h"

#include <gtest/gtest.h>

using namespace apptest;

namespace {

class WaitPlayTest : public AppTest {
protected:
    // Lets the program run for the time, a tick of the tape at a time.
    void runFor(TestApplication& app, int32_t milliseconds)
    {
        for (int32_t passed = 0; passed < milliseconds; passed += Tape::kDefaultPlayInterval) {
            layer.advance(Tape::kDefaultPlayInterval);
            app.turn();
        }
    }
    static void pressKey(int32_t code)
    {
        StylusWindow& window = *StylusWindow::current();
        KPtr<KKeyEvent> event = kAdopt(new KKeyEvent(KKeyEvent::KeyDown, &window, code, 0));
        window.doKeyDown(*event);
    }
};

TEST_F(WaitPlayTest, InsertCommandsPutTimedElementsWithTheirDefaultsAtThePosition)
{
    runApp({}, [&](TestApplication& app) {
        StylusActions& actions = *StylusActions::current();
        Tape& tape = *app.getProject()->getTape();
        // Each insert opens its dialog on a fresh element; OK takes it.
        DialogScript script(layer);
        for (int i = 0; i < 3; ++i)
            script.then<ElementDialog>([&](ElementDialog& dialog) {
                EXPECT_TRUE(dialog.isNewElement());
                layer.clickControl(buttonNamed(layer, dialog, "OK"));
            });
        actions.insertElement(PauseType);
        actions.insertElement(WaitType);
        tape.setPositionQuietly(1);
        actions.insertElement(SpeechType);
        EXPECT_TRUE(script.finished());
        ASSERT_EQ(tape.getCount(), 3);
        EXPECT_EQ(tape.getPosition(), 2);
        EXPECT_EQ(tape.getAt(0)->getType(), PauseType);
        EXPECT_EQ(tape.getAt(1)->getType(), SpeechType);
        EXPECT_EQ(tape.getAt(2)->getType(), WaitType);
        EXPECT_EQ(static_cast<StylusPause*>(tape.getAt(0))->getDuration(), 2000);
        EXPECT_TRUE(static_cast<WaitObject*>(tape.getAt(2))->getWaitForUser());
        EXPECT_TRUE(tape.isModified());
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(WaitPlayTest, AWaitBlinksItsMarkerInTheCornerAndAPressAnywhereAnswersIt)
{
    runApp({}, [&](TestApplication& app) {
        StylusActions& actions = *StylusActions::current();
        StylusWindow& window = *StylusWindow::current();
        Tape& tape = *app.getProject()->getTape();
        DialogScript script(layer);
        script.then<ElementDialog>(
            [&](ElementDialog& dialog) { layer.clickControl(buttonNamed(layer, dialog, "OK")); });
        actions.insertElement(WaitType);
        ASSERT_TRUE(script.finished());
        actions.play(false, false, false);
        runFor(app, 100);
        ASSERT_NE(dynamic_cast<WaitObject*>(tape.getPlayingObject()), nullptr);
        KSprite* marker = window.getWaitMarker();
        ASSERT_NE(marker, nullptr);
        EXPECT_TRUE(window.areWaitMarksShown());
        EXPECT_TRUE(marker->isVisible());
        int32_t pageWidth = window.getPageRectangle().width;
        EXPECT_EQ(int32_t(marker->getPosition().x), pageWidth - 16 - StylusWindow::kMarkerSize);
        EXPECT_EQ(int32_t(marker->getPosition().y), 16);
        EXPECT_TRUE(window.isCursorShown());

        // It blinks once a second.
        runFor(app, 1000);
        EXPECT_FALSE(marker->isVisible());
        runFor(app, 1000);
        EXPECT_TRUE(marker->isVisible());
        // The cursor stays while the story waits for the user.
        runFor(app, 3500);
        EXPECT_TRUE(window.isCursorShown());

        // Paused, only the pause marker blinks; resumed, the wait's again.
        // (The key p would answer the wait: the wait has the keys first.)
        tape.pausePlaying();
        window.setWindowMode(WindowMode::Paused);
        EXPECT_FALSE(marker->isVisible());
        EXPECT_TRUE(window.getPauseMarker()->isVisible());
        runFor(app, 2000);
        EXPECT_FALSE(marker->isVisible());
        pressKey('p');
        runFor(app, 40);
        EXPECT_TRUE(marker->isVisible());
        EXPECT_FALSE(window.getPauseMarker()->isVisible());

        // The click counts when the button goes up, wherever it was.
        press(3, 590);
        runFor(app, 100);
        EXPECT_EQ(tape.getPlayState(), Tape::PlayState::Playing);
        release(400, 20);
        runFor(app, 100);
        EXPECT_EQ(tape.getPlayState(), Tape::PlayState::Stopped);
        EXPECT_FALSE(marker->isVisible());
        EXPECT_EQ(window.getWindowMode(), WindowMode::TapeEditing);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

} // namespace
