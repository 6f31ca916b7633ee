// The menu bar: its model in each state of the program against a stored
// expectation, and what its items and accelerators do.

#include "AppTestSupport.h"
#include "DialogTestSupport.h"

#include "app/AnimMenu.h"
#include "app/EditMenu.h"
#include "app/ItemsMenu.h"
#include "app/PauseDialog.h"
#include "app/StylusActions.h"
#include "app/StylusMenuBar.h"
#include "app/StylusWindow.h"
#include "app/ToolPalette.h"
#include "kernel/KLocalizer.h"
#include "kernel/KLocalizerData.h"
#include "project/StylusProject.h"
#include "tape/StylusPause.h"
#include "tape/StylusSpeech.h"
#include "tape/Tape.h"
#include "tape/WaitObject.h"
#include "windowing/KMenu.h"
#include "windowing/KMenuManager.h"
#include "windowing/KWindowManager.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

using namespace apptest;

namespace {

std::string expectationFile()
{
    const char* source = std::getenv("TALELOOM_TEST_SOURCE_DIR");
    return std::string(source ? source : ".") + "/tests/app/data/MenuModel.txt";
}

class MenuTest : public AppTest {
protected:
    static StylusMenuBar& bar() { return *StylusMenuBar::current(); }
    static void* mainHandle() { return StylusWindow::current()->getNativeWindow(); }

    // The command number of a menu's item in the native strip.
    static int32_t commandOf(KMenu& menu, int32_t item) { return menu.findItem(item)->getCommand(); }

    // The model as a user would find it on opening each menu now.
    static std::string snapshot(const std::string& state)
    {
        bar().update();
        return "## " + state + "\n" + bar().describeText();
    }

    // Three elements, the last a pause with a bookmark, the position at
    // the end.
    // The elements go straight on the tape: the Toolbox would ask for each
    // one's settings first.
    static void fillTape(TestApplication& app)
    {
        Tape& tape = *app.getProject()->getTape();
        for (TapeObjectPtr element :
             { TapeObjectPtr(kAdopt(new WaitObject())), TapeObjectPtr(kAdopt(new StylusSpeech())),
               TapeObjectPtr(kAdopt(new StylusPause())) })
            tape.addElement(*element);
        tape.getAt(2)->setBookmark("Ending");
    }

    // Runs `inside` at the first loop turn during which a modal dialog is
    // up, then cancels the new-project dialog that stands for it.
    void whileModal(const std::function<void()>& inside)
    {
        bool ran = false;
        layer.setTurnHook([this, inside, &ran] {
            KWindowManager* manager = KWindowManager::current();
            if (!manager || manager->getModalCount() == 0)
                return;
            layer.setTurnHook(nullptr);
            ran = true;
            inside();
            cancelProjectDialog();
        });
        // The changes are not to be saved first.
        layer.answerMessageBox(KNativeAnswer::No);
        StylusActions::current()->doNewProject();
        EXPECT_TRUE(ran);
    }
};

TEST_F(MenuTest, ModelInEachStateMatchesTheStoredExpectation)
{
    std::string model;
    runApp({}, [&](TestApplication& app) {
        StylusWindow& window = *StylusWindow::current();
        Tape& tape = *app.getProject()->getTape();
        model += snapshot("empty");

        fillTape(app);
        model += snapshot("idle");

        whileModal([&] { model += snapshot("modal open"); });
        bar().update();
        EXPECT_TRUE(bar().areMenusEnabled());

        StylusActions::current()->play(false, false, false);
        ASSERT_NE(tape.getPlayState(), Tape::PlayState::Stopped);
        model += snapshot("playing");
        StylusActions::current()->stopPlay();

        window.setWindowMode(WindowMode::ActorEditing);
        model += snapshot("actor editing");
        window.setWindowMode(WindowMode::TapeEditing);

        StylusActions::current()->insertElement(TextType);
        ASSERT_EQ(window.getEditMode(), EditMode::Text);
        model += snapshot("text field open");
        window.stopEditing();

        KLocalizer* localizer = kBaseLocalizer();
        ASSERT_NE(localizer, nullptr);
        localizer->setLanguage("Fran\xE7"
                               "ais");
        app.installMenuBar(window);
        model += snapshot("French, idle");
        localizer->setLanguage("English_TL");
        layer.answerMessageBox(KNativeAnswer::No);
    });
    if (std::getenv("TALELOOM_UPDATE_EXPECTATIONS")) {
        std::ofstream(expectationFile()) << model;
        GTEST_SKIP() << "expectation written";
    }
    std::ifstream stored(expectationFile());
    std::stringstream expected;
    expected << stored.rdbuf();
    EXPECT_EQ(model, expected.str());
}

TEST_F(MenuTest, TheNativeStripShowsTheModelAndOnlyEnabledItemsCanBeClicked)
{
    runApp({}, [&](TestApplication& app) {
        const KFakeNativeLayer::MenuBar* strip = layer.menuBarOf(mainHandle());
        ASSERT_NE(strip, nullptr);
        ASSERT_EQ(strip->menus.size(), 7u);
        EXPECT_EQ(strip->menus[0].text, "File");
        EXPECT_EQ(strip->menus[6].text, "Help");

        // Opening Edit renames its items in the strip.
        EditMenu& edit = bar().getEditMenu();
        // The palette's size at the start is the user's; the title names
        // the other one.
        ToolPalette& palette = *ToolPalette::current();
        palette.swapPaletteState();
        bool full = palette.isFull();
        EXPECT_TRUE(layer.openMenu(mainHandle(), strip->menus[1].id));
        const KNativeMenuItem* size = layer.findMenuItem(strip->menus, commandOf(edit, EditMenu::PaletteSize));
        EXPECT_EQ(size->text, full ? "Short Palette" : "Full Palette");
        EXPECT_EQ(size->accelerator, 'F');
        EXPECT_TRUE(layer.chooseMenuItem(mainHandle(), commandOf(edit, EditMenu::PaletteSize)));
        EXPECT_EQ(palette.isFull(), !full);
        EXPECT_EQ(layer.findMenuItem(strip->menus, commandOf(edit, EditMenu::PaletteSize))->text,
                  full ? "Full Palette" : "Short Palette");

        // "Modify" has no target on an empty tape; a greyed item is no choice.
        EXPECT_FALSE(layer.findMenuItem(strip->menus, commandOf(edit, EditMenu::Modify))->enabled);
        EXPECT_FALSE(layer.chooseMenuItem(mainHandle(), commandOf(edit, EditMenu::Modify)));

        // The Toolbox inserts at the position, once its dialog says OK.
        ItemsMenu& items = edit.getItemsMenu();
        DialogScript script(layer);
        script.then<PauseDialog>([&](PauseDialog& dialog) { layer.clickControl(buttonNamed(layer, dialog, "OK")); });
        EXPECT_TRUE(layer.chooseMenuItem(mainHandle(), commandOf(items, 8)));
        EXPECT_TRUE(script.finished());
        Tape& tape = *app.getProject()->getTape();
        ASSERT_EQ(tape.getCount(), 1);
        EXPECT_EQ(tape.getAt(0)->getType(), PauseType);
        EXPECT_EQ(layer.findMenuItem(strip->menus, commandOf(edit, EditMenu::Modify))->text, "Modify Pause");
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(MenuTest, AcceleratorsFollowTheRulesOfTheMomentEvenWithTheStripHidden)
{
    runApp({}, [&](TestApplication& app) {
        Tape& tape = *app.getProject()->getTape();
        ToolPalette& palette = *ToolPalette::current();
        int32_t button = palette.getSelectedButton();

        // Nothing to play: the key is taken and nothing happens.
        EXPECT_TRUE(layer.typeAccelerator(mainHandle(), 'G'));
        EXPECT_EQ(tape.getPlayState(), Tape::PlayState::Stopped);
        // Control+S with nothing to save is swallowed: no colour is picked.
        EXPECT_TRUE(layer.typeAccelerator(mainHandle(), 'S'));
        EXPECT_EQ(palette.getSelectedButton(), button);
        // A key no item has goes on as a key.
        EXPECT_FALSE(layer.typeAccelerator(mainHandle(), '7'));

        fillTape(app);
        bar().setShown(false);
        EXPECT_FALSE(layer.menuBarOf(mainHandle())->shown);
        EXPECT_TRUE(layer.typeAccelerator(mainHandle(), 'G'));
        EXPECT_EQ(tape.getPlayState(), Tape::PlayState::Playing);
        // Play again while playing does nothing; Control+1 stops.
        EXPECT_TRUE(layer.typeAccelerator(mainHandle(), 'G'));
        EXPECT_EQ(tape.getPlayState(), Tape::PlayState::Playing);
        EXPECT_TRUE(layer.typeAccelerator(mainHandle(), '1'));
        EXPECT_EQ(tape.getPlayState(), Tape::PlayState::Stopped);
        bar().setShown(true);

        // Control+8 plays from the position.
        tape.goToPosition(3);
        EXPECT_TRUE(layer.typeAccelerator(mainHandle(), '8'));
        EXPECT_EQ(tape.getPlayState(), Tape::PlayState::Playing);
        EXPECT_GE(tape.getPlayIndex(), 2);
        StylusActions::current()->stopPlay();

        // With a modal dialog up every menu is off, accelerators too.
        whileModal([&] {
            EXPECT_FALSE(bar().areMenusEnabled());
            EXPECT_TRUE(layer.typeAccelerator(mainHandle(), 'G'));
            EXPECT_EQ(tape.getPlayState(), Tape::PlayState::Stopped);
        });
        EXPECT_TRUE(bar().areMenusEnabled());

        // In actor editing Control+S belongs to the actor's Save, which is
        // not there yet: the project is not saved.
        app.getStylusMenuBar()->update();
        StylusWindow::current()->setWindowMode(WindowMode::ActorEditing);
        int32_t choosers = int32_t(layer.chooserRequests().size());
        EXPECT_TRUE(layer.typeAccelerator(mainHandle(), 'S'));
        EXPECT_EQ(int32_t(layer.chooserRequests().size()), choosers);
        StylusWindow::current()->setWindowMode(WindowMode::TapeEditing);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(MenuTest, PlayingHidesTheStripOnlyForTheTapesFlagAndFullScreen)
{
    runApp({}, [&](TestApplication& app) {
        Tape& tape = *app.getProject()->getTape();
        fillTape(app);
        const KFakeNativeLayer::MenuBar* strip = layer.menuBarOf(mainHandle());
        StylusActions& actions = *StylusActions::current();
        actions.play(false, false, false);
        EXPECT_TRUE(strip->shown);
        actions.stopPlay();
        tape.getFlags().set(Tape::HideMenuBar);
        actions.play(false, false, false);
        EXPECT_FALSE(strip->shown);
        actions.stopPlay();
        EXPECT_TRUE(strip->shown);
        tape.getFlags().clear(Tape::HideMenuBar);
        actions.play(false, true, false);
        EXPECT_FALSE(strip->shown);
        actions.stopPlay();
        EXPECT_TRUE(strip->shown);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

} // namespace
