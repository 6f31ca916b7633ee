// The bookmark and "Animation Setup" dialogs the Edit and Animate menus
// open, on the fake native layer: the values they show and take, the
// refusal of a bookmark name another element carries, and Cancel that
// leaves the tape's bytes alone.

#include "AppTestSupport.h"
#include "DialogTestSupport.h"

#include "app/AnimMenu.h"
#include "app/EditBookmarkDialog.h"
#include "app/EditMenu.h"
#include "app/SetupDialog.h"
#include "app/StylusMenuBar.h"
#include "app/StylusWindow.h"
#include "project/StylusProject.h"
#include "tape/StylusPause.h"
#include "tape/Tape.h"
#include "tape/WaitObject.h"
#include "tests/graphics/StreamTestSupport.h"

#include <gtest/gtest.h>

using namespace apptest;

namespace {

using Kind = KNativeControlKind;

class BookmarkSetupDialogTest : public AppTest {
protected:
    static StylusMenuBar& bar() { return *StylusMenuBar::current(); }
    static void* mainHandle() { return StylusWindow::current()->getNativeWindow(); }
    static int32_t commandOf(KMenu& menu, int32_t item) { return menu.findItem(item)->getCommand(); }

    // Three elements, none with a bookmark, the position on the second;
    // the tape has no changes to save.
    static Tape& fillTape(TestApplication& app)
    {
        Tape& tape = *app.getProject()->getTape();
        for (int32_t i = 0; i < 3; ++i) {
            KPtr<StylusPause> pause = kAdopt(new StylusPause());
            pause->setDuration(100 * (i + 1));
            tape.addElement(*pause);
        }
        tape.goToPosition(2);
        tape.clearModified();
        return tape;
    }

    // Chosen as a user does it: the menu opens first, which brings its
    // items up to date.
    void chooseSetBookmark()
    {
        bar().update();
        EXPECT_TRUE(layer.chooseMenuItem(mainHandle(), commandOf(bar().getEditMenu(), EditMenu::SetBookmark)));
    }
    void chooseAnimationSetup()
    {
        bar().update();
        EXPECT_TRUE(layer.chooseMenuItem(mainHandle(), commandOf(bar().getAnimMenu(), AnimMenu::AnimationSetup)));
    }
    std::string itemTitle(KMenu& menu, int32_t item)
    {
        bar().update();
        return menu.findItem(item)->getTitle().c_str();
    }

    void click(KWindow& dialog, const std::string& button) { layer.clickControl(buttonNamed(layer, dialog, button)); }
    std::string fieldText(KWindow& dialog) { return layer.controlOf(nativeControl(layer, dialog, Kind::Entry))->text; }
    void type(KWindow& dialog, const std::string& text)
    {
        EXPECT_TRUE(layer.typeControlText(nativeControl(layer, dialog, Kind::Entry), text));
    }
    // Types the name and presses OK.
    void answerBookmark(const std::string& expectedTitle, const std::string& shown, const std::string& typed)
    {
        script.then<EditBookmarkDialog>([=, this](EditBookmarkDialog& dialog) {
            EXPECT_EQ(std::string(dialog.getTitle().c_str()), expectedTitle);
            EXPECT_EQ(fieldText(dialog), shown);
            type(dialog, typed);
            click(dialog, "OK");
        });
    }
    void* box(KWindow& dialog, const std::string& text)
    {
        return nativeControl(layer, dialog, Kind::CheckBox, 0, text);
    }
    double valueOf(void* control) { return layer.controlOf(control)->value; }

    DialogScript script { layer };
};

TEST_F(BookmarkSetupDialogTest, BookmarkIsSetRenamedAndRemovedByAnEmptyName)
{
    runApp({}, [&](TestApplication& app) {
        Tape& tape = fillTape(app);
        TapeObject& element = *tape.getAt(1);
        EditMenu& edit = bar().getEditMenu();
        EXPECT_EQ(itemTitle(edit, EditMenu::SetBookmark), "Set Bookmark");

        // Set: the blanks around the name go.
        answerBookmark("Set Bookmark", "", "  Ending ");
        chooseSetBookmark();
        EXPECT_TRUE(script.finished());
        EXPECT_EQ(element.getBookmark(), KString("Ending"));
        EXPECT_TRUE(tape.isModified());
        EXPECT_EQ(itemTitle(edit, EditMenu::SetBookmark), "Edit Bookmark 'Ending'");

        // Renamed.
        tape.clearModified();
        answerBookmark("Edit Bookmark", "Ending", "Finale");
        chooseSetBookmark();
        EXPECT_TRUE(script.finished());
        EXPECT_EQ(element.getBookmark(), KString("Finale"));
        EXPECT_TRUE(tape.isModified());
        auto names = tape.getBookmarkNames();
        ASSERT_EQ(names->getSize(), 1);

        // OK on the same name changes nothing to save.
        tape.clearModified();
        answerBookmark("Edit Bookmark", "Finale", "Finale");
        chooseSetBookmark();
        EXPECT_TRUE(script.finished());
        EXPECT_FALSE(tape.isModified());

        // An empty name, or blanks only, removes it.
        answerBookmark("Edit Bookmark", "Finale", "   ");
        chooseSetBookmark();
        EXPECT_TRUE(script.finished());
        EXPECT_FALSE(element.hasBookmark());
        EXPECT_TRUE(tape.isModified());
        EXPECT_EQ(tape.getBookmarkNames()->getSize(), 0);
        EXPECT_EQ(itemTitle(edit, EditMenu::SetBookmark), "Set Bookmark");

        // Before the first element there is nothing to mark.
        tape.goToPosition(0);
        bar().update();
        EXPECT_FALSE(layer.chooseMenuItem(mainHandle(), commandOf(edit, EditMenu::SetBookmark)));
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(BookmarkSetupDialogTest, ANameAnotherElementCarriesIsRefusedAndTheDialogStaysOpen)
{
    runApp({}, [&](TestApplication& app) {
        Tape& tape = fillTape(app);
        tape.getAt(0)->setBookmark("Start");
        tape.getAt(1)->setBookmark("Middle");
        tape.clearModified();

        script.then<EditBookmarkDialog>([&](EditBookmarkDialog& dialog) {
            type(dialog, "Start");
            size_t shown = layer.alerts().size();
            click(dialog, "OK");
            ASSERT_EQ(layer.alerts().size(), shown + 1);
            EXPECT_EQ(layer.alerts().back().text,
                      "Another element already has the bookmark \"Start\". Please choose another name.");
            EXPECT_EQ(layer.alerts().back().title, "Edit Bookmark");
            EXPECT_TRUE(dialog.isOpen());
            EXPECT_EQ(fieldText(dialog), "Start");
            // Its own name is no clash; a free one is taken.
            type(dialog, "Opening");
            click(dialog, "OK");
            EXPECT_EQ(layer.alerts().size(), shown + 1);
        });
        chooseSetBookmark();
        EXPECT_TRUE(script.finished());
        EXPECT_EQ(tape.getAt(0)->getBookmark(), KString("Start"));
        EXPECT_EQ(tape.getAt(1)->getBookmark(), KString("Opening"));
        EXPECT_TRUE(tape.isModified());

        EXPECT_TRUE(EditBookmarkDialog::isUsedElsewhere(tape, *tape.getAt(1), KString("Start")));
        EXPECT_FALSE(EditBookmarkDialog::isUsedElsewhere(tape, *tape.getAt(1), KString("Opening")));
        EXPECT_FALSE(EditBookmarkDialog::isUsedElsewhere(tape, *tape.getAt(1), KString()));
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(BookmarkSetupDialogTest, SetupShowsTheTapesValuesAndTakesThemAtOk)
{
    EXPECT_EQ(SetupDialog::speedOfInterval(20), 31);
    EXPECT_EQ(SetupDialog::speedOfInterval(1), 50);
    EXPECT_EQ(SetupDialog::speedOfInterval(0), 50);
    EXPECT_EQ(SetupDialog::speedOfInterval(500), 1);
    EXPECT_EQ(SetupDialog::intervalOfSpeed(50, 20), 1);
    EXPECT_EQ(SetupDialog::intervalOfSpeed(1, 500), 500);
    EXPECT_EQ(SetupDialog::intervalOfSpeed(2, 500), 49);
    runApp({}, [&](TestApplication& app) {
        Tape& tape = fillTape(app);
        KFlagSet& flags = tape.getFlags();
        flags.set(Tape::LoopingAnimation | Tape::HideTools);
        flags.clear(Tape::HideMenuBar);
        tape.setPlayInterval(11);

        script.then<SetupDialog>([&](SetupDialog& dialog) {
            EXPECT_EQ(std::string(dialog.getTitle().c_str()), "Animation Setup");
            EXPECT_EQ(valueOf(box(dialog, "Looping Animation")), 1);
            EXPECT_EQ(valueOf(box(dialog, "Hide Menu Bar")), 0);
            EXPECT_EQ(valueOf(box(dialog, "Hide Tools")), 1);
            void* slider = nativeControl(layer, dialog, Kind::Slider);
            EXPECT_EQ(valueOf(slider), 40);
            EXPECT_EQ(layer.controlOf(slider)->range.minimum, 1);
            EXPECT_EQ(layer.controlOf(slider)->range.maximum, 50);
            layer.changeControlValue(box(dialog, "Looping Animation"), 0);
            layer.changeControlValue(box(dialog, "Hide Menu Bar"), 1);
            layer.changeControlValue(slider, 50);
            // Nothing reaches the tape before OK.
            EXPECT_TRUE(tape.isLooping());
            EXPECT_EQ(tape.getPlayInterval(), 11);
            click(dialog, "OK");
        });
        chooseAnimationSetup();
        EXPECT_TRUE(script.finished());
        EXPECT_FALSE(tape.isLooping());
        EXPECT_TRUE(flags.test(Tape::HideMenuBar));
        EXPECT_TRUE(flags.test(Tape::HideTools));
        EXPECT_EQ(tape.getPlayInterval(), 1);
        EXPECT_TRUE(tape.isModified());

        // An interval the slider cannot show survives an OK that leaves the
        // slider alone, and that OK is no change.
        tape.setPlayInterval(200);
        tape.clearModified();
        script.then<SetupDialog>([&](SetupDialog& dialog) {
            EXPECT_EQ(valueOf(nativeControl(layer, dialog, Kind::Slider)), 1);
            click(dialog, "OK");
        });
        chooseAnimationSetup();
        EXPECT_TRUE(script.finished());
        EXPECT_EQ(tape.getPlayInterval(), 200);
        EXPECT_FALSE(tape.isModified());

        // Not while the story plays (with the menu bar shown).
        flags.clear(Tape::HideMenuBar);
        tape.startPlaying(0);
        ASSERT_TRUE(tape.isPlaying());
        bar().update();
        EXPECT_FALSE(layer.chooseMenuItem(mainHandle(), commandOf(bar().getAnimMenu(), AnimMenu::AnimationSetup)));
        EXPECT_FALSE(layer.chooseMenuItem(mainHandle(), commandOf(bar().getEditMenu(), EditMenu::SetBookmark)));
        tape.stopPlaying();
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(BookmarkSetupDialogTest, CancelLeavesTheTapesStreamByteIdentical)
{
    runApp({}, [&](TestApplication& app) {
        Tape& tape = fillTape(app);
        tape.getAt(0)->setBookmark("Start");
        tape.getAt(1)->setBookmark("Middle");
        tape.getFlags().set(Tape::HideMenuBar);
        tape.setPlayInterval(33);
        tape.clearModified();
        std::vector<uint8_t> before = streams::of(tape);
        tape.clearModified();

        script.then<SetupDialog>([&](SetupDialog& dialog) {
            for (const char* text : { "Looping Animation", "Hide Menu Bar", "Hide Tools" })
                layer.changeControlValue(box(dialog, text), valueOf(box(dialog, text)) ? 0 : 1);
            layer.changeControlValue(nativeControl(layer, dialog, Kind::Slider), 3);
            click(dialog, "Cancel");
        });
        chooseAnimationSetup();
        // A new name, then Cancel; a refused name, then Cancel.
        script.then<EditBookmarkDialog>([&](EditBookmarkDialog& dialog) {
            type(dialog, "Elsewhere");
            click(dialog, "Cancel");
        });
        chooseSetBookmark();
        script.then<EditBookmarkDialog>([&](EditBookmarkDialog& dialog) {
            type(dialog, "Start");
            click(dialog, "OK");
            EXPECT_TRUE(dialog.isOpen());
            click(dialog, "Cancel");
        });
        chooseSetBookmark();
        script.then<EditBookmarkDialog>([&](EditBookmarkDialog& dialog) {
            type(dialog, "");
            click(dialog, "Cancel");
        });
        chooseSetBookmark();
        EXPECT_TRUE(script.finished());
        EXPECT_FALSE(tape.isModified());
        EXPECT_EQ(streams::of(tape), before);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

} // namespace
