// The navigation tool: stepping by kind, the counter, the shown position
// against the tape's, "Go!" and the Edit menu's item.

#include "AppTestSupport.h"

#include "app/EditMenu.h"
#include "app/ElementDialog.h"
#include "app/NavigationPalette.h"
#include "app/StylusActions.h"
#include "app/StylusMenuBar.h"
#include "app/StylusWindow.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/TapeObject.h"

#include <gtest/gtest.h>

using namespace apptest;

namespace {

// A tape of bare elements of the types, for the searches.
TapePtr tapeOf(std::initializer_list<int32_t> types)
{
    TapePtr tape = kAdopt(new Tape());
    for (int32_t type : types) {
        TapeObjectPtr element = kAdopt(new TapeObject());
        element->setType(type);
        tape->add(*element);
    }
    return tape;
}

class NavigationTest : public AppTest {
protected:
    static NavigationControl& navigation() { return NavigationPalette::current()->getControl(); }
    static void* handleOf(int32_t part) { return navigation().getPart(part)->getNativeControl(); }
    static KNativeMenuItem editItem(KFakeNativeLayer& layer, int32_t item)
    {
        void* window = StylusWindow::current()->getNativeWindow();
        const KFakeNativeLayer::MenuBar* strip = layer.menuBarOf(window);
        int32_t command = StylusMenuBar::current()->getEditMenu().findItem(item)->getCommand();
        EXPECT_TRUE(layer.openMenu(window, strip->menus[1].id));
        return *layer.findMenuItem(strip->menus, command);
    }
    bool chooseEditItem(int32_t item)
    {
        int32_t command = StylusMenuBar::current()->getEditMenu().findItem(item)->getCommand();
        return layer.chooseMenuItem(StylusWindow::current()->getNativeWindow(), command);
    }
    // Wait, speech, pause, the last one bookmarked "Ending"; the tape at its end.
    static Tape& threeElements(TestApplication& app)
    {
        Tape& tape = *app.getProject()->getTape();
        for (int32_t type : { WaitType, SpeechType, PauseType })
            tape.addElement(*ElementDialog::makeElement(type));
        tape.getAt(2)->setBookmark("Ending");
        TapeHost::get().refreshBookmarks();
        navigation().followTape();
        return tape;
    }
};

// --- Searches and the counter -------------------------------------------------------

TEST_F(NavigationTest, FilteredStepsFindTheKindAndBothActorKindsMatchEachOther)
{
    TapePtr tape = tapeOf({ StrokeType, ActorActionType, TextType, ActorMotionType, StrokeType, ActorActionType });
    for (int32_t actor : { ActorActionType, ActorMotionType }) {
        EXPECT_EQ(NavigationControl::findForward(*tape, 0, actor), 2) << actor;
        EXPECT_EQ(NavigationControl::findForward(*tape, 2, actor), 4) << "a motion matches the action filter";
        EXPECT_EQ(NavigationControl::findForward(*tape, 4, actor), 6);
        EXPECT_EQ(NavigationControl::findForward(*tape, 6, actor), -1) << "no match leaves the position";
        EXPECT_EQ(NavigationControl::findBack(*tape, 6, actor), 4);
        EXPECT_EQ(NavigationControl::findBack(*tape, 4, actor), 2);
        EXPECT_EQ(NavigationControl::findBack(*tape, 2, actor), -1) << "back at the first match does nothing";
    }
    EXPECT_EQ(NavigationControl::findForward(*tape, 1, StrokeType), 5);
    EXPECT_EQ(NavigationControl::findBack(*tape, 5, StrokeType), 1);
    EXPECT_EQ(NavigationControl::findForward(*tape, 0, ImageType), -1);
    // Without a filter one step, within the tape.
    EXPECT_EQ(NavigationControl::findBack(*tape, 0, 0), -1);
    EXPECT_EQ(NavigationControl::findBack(*tape, 3, 0), 2);
    EXPECT_EQ(NavigationControl::findForward(*tape, 5, 0), 6);
    EXPECT_EQ(NavigationControl::findForward(*tape, 6, 0), -1);
    EXPECT_FALSE(NavigationControl::matches(TextType, ActorActionType));
    EXPECT_FALSE(NavigationControl::matches(ActorActionType, TextType));
}

TEST_F(NavigationTest, TheCounterNamesTheKindBeforeTheShownPosition)
{
    StylusApplication::registerClasses();
    TapePtr tape = tapeOf({ StrokeType, ActorMotionType, PageTransitionType, RelayMacroType });
    EXPECT_EQ(std::string(NavigationControl::counterText(tape.get(), 0).c_str()), "(0/4)");
    EXPECT_EQ(std::string(NavigationControl::counterText(tape.get(), 1).c_str()), "(1/4) Stroke");
    EXPECT_EQ(std::string(NavigationControl::counterText(tape.get(), 2).c_str()), "(2/4) Actor");
    EXPECT_EQ(std::string(NavigationControl::counterText(tape.get(), 3).c_str()), "(3/4) Page Transition");
    EXPECT_EQ(std::string(NavigationControl::counterText(tape.get(), 4).c_str()), "(4/4) Relay Macro");

    NavigationControlPtr control = kAdopt(new NavigationControl());
    TapePtr empty = tapeOf({});
    control->setTape(empty.get());
    EXPECT_EQ(std::string(control->getCounterText().c_str()), "(0/0)");
    EXPECT_EQ(control->getScrollBar().getPage(), 1) << "an empty tape's page is 1";

    control->setTape(tape.get());
    control->setFilter(ActorMotionType);
    EXPECT_EQ(control->getFilter(), ActorActionType) << "the menu has one actor entry";
    control->stepForward();
    EXPECT_EQ(control->getShownPosition(), 2);
    EXPECT_EQ(std::string(control->getCounterText().c_str()), "(2/4) Actor");
    EXPECT_EQ(tape->getPosition(), 0) << "a step moves only what is shown";
    control->stepForward();
    EXPECT_EQ(control->getShownPosition(), 2);
    control->setFilter(0);
    control->showEnd();
    EXPECT_EQ(control->getShownPosition(), 4);
    EXPECT_EQ(control->getScrollBar().getValue(), 4);
    EXPECT_EQ(control->getScrollBar().getMaximum(), 4);
}

// --- In the program ---------------------------------------------------------------------

TEST_F(NavigationTest, TheBarTheListAndTheStepsMoveOnlyWhatIsShownAndGoMovesTheTape)
{
    runApp({}, [&](TestApplication& app) {
        Tape& tape = threeElements(app);
        NavigationPalette& palette = *app.getNavigationPalette();
        EXPECT_EQ(palette.getTitle(), KString("Navigation"));
        EXPECT_EQ(palette.getClientBounds().height, 176);
        EXPECT_FALSE(palette.isShown()) << "the menu shows it";
        palette.toggle();
        ASSERT_TRUE(palette.isShown());
        NavigationControl& nav = navigation();
        EXPECT_EQ(nav.getShownPosition(), 3) << "the tool follows the tape";
        EXPECT_TRUE(nav.isPictureThePage());
        EXPECT_EQ(std::string(nav.getCounterText().c_str()), "(3/3) Pause");
        ASSERT_EQ(nav.getBookmarkList().countItems(), 2);
        EXPECT_EQ(nav.getBookmarkList().getItems()[0], KString("No Bookmark"));
        EXPECT_EQ(nav.getBookmarkList().getSelected(), 1) << "the shown element's bookmark";

        EXPECT_TRUE(layer.changeControlValue(handleOf(NavigationControl::ScrollBar), 1));
        EXPECT_EQ(nav.getShownPosition(), 1);
        EXPECT_EQ(tape.getPosition(), 3);
        EXPECT_FALSE(nav.isPictureThePage()) << "elsewhere the kind stands for the page";
        EXPECT_EQ(std::string(nav.getCounterText().c_str()), "(1/3) Wait");

        EXPECT_TRUE(layer.changeControlValue(handleOf(NavigationControl::BookmarkList), 1));
        EXPECT_EQ(nav.getShownPosition(), 3);
        static_cast<KImageControl*>(nav.getPart(NavigationControl::BackButton))->pressByKey();
        EXPECT_EQ(nav.getShownPosition(), 2);
        static_cast<KImageControl*>(nav.getPart(NavigationControl::BeginningButton))->pressByKey();
        EXPECT_EQ(nav.getShownPosition(), 0);
        EXPECT_EQ(tape.getPosition(), 3);

        // The filter menu offers All and ten kinds; the choice steps by it.
        layer.answerPopUpMenu(TapeObjectMenu::kFirstItem + SpeechType);
        static_cast<KImageControl*>(nav.getPart(NavigationControl::FilterButton))->pressByKey();
        ASSERT_FALSE(layer.popUpMenus().empty());
        EXPECT_EQ(layer.popUpMenus().back().items.size(), 11u);
        EXPECT_EQ(nav.getFilter(), SpeechType);
        static_cast<KImageControl*>(nav.getPart(NavigationControl::ForwardButton))->pressByKey();
        EXPECT_EQ(nav.getShownPosition(), 2);
        EXPECT_EQ(tape.getPosition(), 3);

        layer.clickControl(handleOf(NavigationControl::GoButton));
        EXPECT_EQ(tape.getPosition(), 2) << "Go! moves the tape";
        EXPECT_EQ(nav.getShownPosition(), 2);
        EXPECT_TRUE(nav.isPictureThePage());

        // The tape moving elsewhere is followed.
        StylusActions::current()->goToBeginning();
        EXPECT_EQ(nav.getShownPosition(), 0);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(NavigationTest, ABookmarkDeletedWhileShownRefreshesTheListWithoutJumping)
{
    runApp({}, [&](TestApplication& app) {
        Tape& tape = threeElements(app);
        StylusActions::current()->goToBeginning();
        NavigationControl& nav = navigation();
        nav.showBookmark(1);
        ASSERT_EQ(nav.getShownPosition(), 3);
        EXPECT_EQ(nav.getPart(NavigationControl::BookmarkLine)->getText(), KString("Ending"));

        tape.getAt(2)->setBookmark(KString());
        TapeHost::get().refreshBookmarks();
        EXPECT_EQ(nav.getShownPosition(), 3);
        EXPECT_EQ(tape.getPosition(), 0);
        EXPECT_EQ(nav.getBookmarkList().countItems(), 1);
        EXPECT_EQ(nav.getBookmarkList().getSelected(), 0);
        EXPECT_TRUE(nav.getPart(NavigationControl::BookmarkLine)->getText().isEmpty());
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(NavigationTest, TheEditMenuItemShowsAndHidesTheToolButNotInActorEditing)
{
    runApp({}, [&](TestApplication& app) {
        NavigationPalette& palette = *app.getNavigationPalette();
        KNativeMenuItem item = editItem(layer, EditMenu::NavigationTool);
        EXPECT_EQ(item.text, "Show Navigation Tool");
        EXPECT_TRUE(item.enabled);
        EXPECT_TRUE(chooseEditItem(EditMenu::NavigationTool));
        EXPECT_TRUE(palette.isShown());
        EXPECT_EQ(editItem(layer, EditMenu::NavigationTool).text, "Hide Navigation Tool");
        EXPECT_TRUE(chooseEditItem(EditMenu::NavigationTool));
        EXPECT_FALSE(palette.isShown());
        EXPECT_EQ(editItem(layer, EditMenu::NavigationTool).text, "Show Navigation Tool");

        StylusWindow::current()->setWindowMode(WindowMode::ActorEditing);
        palette.toggle();
        EXPECT_FALSE(palette.isShown()) << "not opened while an actor is edited";
        StylusWindow::current()->setWindowMode(WindowMode::TapeEditing);
    });
}

} // namespace
