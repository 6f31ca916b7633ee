#include "AppTestSupport.h"
#include "DialogTestSupport.h"

#include "app/ActorActionDialog.h"
#include "app/ActorEditor.h"
#include "app/EditSequenceParametersDialog.h"
#include "app/StringSelectorDialog.h"
#include "app/StylusActions.h"
#include "app/StylusWindow.h"
#include "app/actors/Actor.h"
#include "app/actors/ActorAction.h"
#include "app/actors/ActorSequence.h"
#include "graphics/KColor.h"
#include "graphics/KImage.h"
#include "project/StylusProject.h"
#include "tape/Stroke.h"
#include "tape/Tape.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace fs = std::filesystem;
using namespace apptest;
using Kind = KNativeControlKind;

namespace {

class ActorEditorTest : public AppTest {
protected:
    DialogScript script { layer };

    std::string sampleCopy()
    {
        folder = freshFolder("actor-editor");
        fs::copy(std::string(std::getenv("TALELOOM_TEST_SOURCE_DIR")) + "/data/samples/Sample", folder + "/Sample",
                 fs::copy_options::recursive);
        return folder + "/Sample/Sample.TPD";
    }
    std::string actorsFolder() const { return folder + "/Sample/Actors"; }
    std::string title() const { return StylusWindow::current()->getTitle().c_str(); }

    void click(KWindow& dialog, const std::string& button) { layer.clickControl(buttonNamed(layer, dialog, button)); }
    // The next selector: types the name (or picks the entry) and presses OK.
    void answerName(const std::string& typed)
    {
        script.then<StringSelectorDialog>([=, this](StringSelectorDialog& dialog) {
            EXPECT_TRUE(layer.typeControlText(nativeControl(layer, dialog, Kind::Entry), typed));
            click(dialog, "OK");
        });
    }
    void answerChoice(int32_t index)
    {
        script.then<StringSelectorDialog>([=, this](StringSelectorDialog& dialog) {
            EXPECT_TRUE(layer.changeControlValue(nativeControl(layer, dialog, Kind::PopUpList), index));
            click(dialog, "OK");
        });
    }
    // A stroke painted on the frame the window shows.
    static void paintOn(Tape& frame)
    {
        StrokePtr stroke(new Stroke());
        stroke->addPoint(10, 10);
        stroke->addPoint(40, 30);
        frame.addElement(*stroke);
    }

    std::string folder;
};

// A teacher makes an actor frame by frame, saves it into the project,
// goes back to the story and opens it again as it was saved.
TEST_F(ActorEditorTest, AnActorIsDrawnFrameByFrameSavedAndOpenedAgain)
{
    runApp({ sampleCopy() }, [&](TestApplication& app) {
        app.turn(2);
        StylusWindow& window = *StylusWindow::current();
        ActorEditor& editor = *ActorEditor::current();
        Tape* story = window.getTape();
        editor.doNewActor();
        ASSERT_TRUE(editor.isEditing());
        EXPECT_EQ(window.getWindowMode(), WindowMode::ActorEditing);
        EXPECT_NE(window.getTape(), story);
        EXPECT_EQ(title(), "Actor: No Name - Movement1 - Frame 1");
        paintOn(*window.getTape());
        editor.newFrame();
        EXPECT_EQ(title(), "Actor: No Name - Movement1 - Frame 2");
        paintOn(*window.getTape());
        editor.duplicateFrame();
        EXPECT_EQ(editor.getFrame(), 2);
        EXPECT_EQ(window.getTape()->getCount(), 1) << "the copy has the frame's stroke";
        answerChoice(0);
        editor.editOtherFrame();
        EXPECT_EQ(editor.getFrame(), 0);

        // A name in use is refused and asked again.
        answerName("Walker");
        script.then<StringSelectorDialog>([&](StringSelectorDialog& dialog) {
            EXPECT_EQ(layer.alerts().back().text, "This Actor Already Exists; please choose another name!");
            EXPECT_TRUE(layer.typeControlText(nativeControl(layer, dialog, Kind::Entry), "Cat"));
            click(dialog, "OK");
        });
        EXPECT_TRUE(editor.doSaveActor());
        EXPECT_TRUE(script.finished());
        EXPECT_TRUE(fs::exists(actorsFolder() + "/Cat.ACT"));
        EXPECT_FALSE(editor.hasChanges());
        EXPECT_EQ(title(), "Actor: Cat - Movement1 - Frame 1");

        editor.doEndActorEditing();
        EXPECT_FALSE(editor.isEditing());
        EXPECT_EQ(window.getWindowMode(), WindowMode::TapeEditing);
        EXPECT_EQ(window.getTape(), story);

        EXPECT_EQ(ActorEditor::actorNamesIn(*app.getProject()->getActorsDirectory()),
                  (std::vector<KString> { "Cat", "Walker" }));
        answerChoice(0);
        editor.doEditActor();
        ASSERT_TRUE(editor.isEditing());
        Actor& opened = *editor.getActor();
        ASSERT_EQ(opened.getSequenceCount(), 1);
        EXPECT_EQ(opened.getSequenceAt(0)->getFrameCount(), 3);
        EXPECT_EQ(window.getTape()->getCount(), 1);

        // Movements: a new one, then removed again after the question.
        editor.newMovement();
        EXPECT_EQ(opened.getSequenceCount(), 2);
        EXPECT_EQ(title(), "Actor: Cat - Movement 2 - Frame 1");
        answerChoice(1);
        layer.answerMessageBox(KNativeAnswer::Yes);
        editor.removeMovement();
        EXPECT_EQ(opened.getSequenceCount(), 1);
        size_t alerts = layer.alerts().size();
        editor.removeMovement();
        EXPECT_EQ(layer.alerts().size(), alerts + 1) << "the last movement stays";
        EXPECT_EQ(opened.getSequenceCount(), 1);

        // Leaving with changes asks; Cancel stays in the editor.
        layer.answerMessageBox(KNativeAnswer::Cancel);
        editor.doEndActorEditing();
        EXPECT_TRUE(editor.isEditing());
        layer.answerMessageBox(KNativeAnswer::No);
        editor.doEndActorEditing();
        EXPECT_FALSE(editor.isEditing());
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

// A movement's name, speed and way of playing; an empty name or one
// another movement has is refused with the dialog open.
TEST_F(ActorEditorTest, AMovementTakesItsParametersAndKeepsItsNameUnique)
{
    runApp({ sampleCopy() }, [&](TestApplication& app) {
        app.turn(2);
        ActorEditor& editor = *ActorEditor::current();
        editor.doNewActor();
        editor.newMovement();
        script.then<EditSequenceParametersDialog>([&](EditSequenceParametersDialog& dialog) {
            void* name = nativeControl(layer, dialog, Kind::Entry);
            EXPECT_TRUE(layer.typeControlText(name, " "));
            click(dialog, "OK");
            EXPECT_EQ(layer.alerts().back().text, "A movement needs a name.");
            EXPECT_TRUE(layer.typeControlText(name, "Movement1"));
            click(dialog, "OK");
            EXPECT_TRUE(dialog.isOpen()) << "the first movement's name";
            EXPECT_TRUE(layer.typeControlText(name, " Run "));
            EXPECT_TRUE(layer.changeControlValue(nativeControl(layer, dialog, Kind::SpinField), 4));
            EXPECT_TRUE(layer.changeControlValue(nativeControl(layer, dialog, Kind::PopUpList), 1));
            click(dialog, "OK");
        });
        editor.editParameters();
        EXPECT_TRUE(script.finished());
        ActorSequence& movement = *editor.getActor()->getSequenceAt(1);
        EXPECT_EQ(movement.getName(), KString("Run"));
        EXPECT_EQ(movement.getSpeed(), 4);
        EXPECT_EQ(movement.getPlayType(), 2);
        EXPECT_EQ(title(), "Actor: No Name - Run - Frame 1");
        layer.answerMessageBox(KNativeAnswer::No);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(ActorEditorTest, AFlipMirrorsTheFrameOrTheWholeMovementAcrossThePage)
{
    runApp({ sampleCopy() }, [&](TestApplication& app) {
        app.turn(2);
        ActorEditor& editor = *ActorEditor::current();
        editor.doNewActor();
        int16_t width = editor.getActor()->getPageSize().width;
        auto strokeOf = [&](int32_t frame) {
            return static_cast<Stroke*>(editor.getActor()->getSequenceAt(0)->getFrame(frame)->getAt(0));
        };
        paintOn(*StylusWindow::current()->getTape());
        editor.duplicateFrame();
        editor.flipFrame(true);
        EXPECT_EQ(strokeOf(1)->getBounds().getRight(), width - strokeOf(0)->getBounds().x) << "mirrored";
        EXPECT_LT(strokeOf(0)->getBounds().x, 20) << "the other frame stays";
        editor.flipMovement(true);
        EXPECT_GT(strokeOf(0)->getBounds().x, width / 2);
        EXPECT_LT(strokeOf(1)->getBounds().x, width / 2);
        EXPECT_TRUE(editor.hasChanges());
        layer.answerMessageBox(KNativeAnswer::No);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

// What lies behind the frame being drawn: a chequer of 16-pixel squares in
// two shades, or the picture the user chose, as it is or stretched.
TEST_F(ActorEditorTest, TheStageShowsTheChosenBackgroundBehindTheFrame)
{
    runApp({ sampleCopy() }, [&](TestApplication& app) {
        app.turn(2);
        ActorEditor& editor = *ActorEditor::current();
        KImage stage(KGraphicSize(64, 64));
        auto pixel = [&](int x, int y) {
            KColor c = stage.getDevice().getPixel(int16_t(x), int16_t(y));
            return (c.getRed() >> 8) << 16 | (c.getGreen() >> 8) << 8 | (c.getBlue() >> 8);
        };
        auto draw = [&](ActorEditor::Background background) {
            editor.setBackground(background);
            stage.getDevice().fillRectangle(KGraphicRectangle(0, 0, 64, 64), KColor(0x1200, 0x3400, 0x5600));
            editor.drawBackground(stage.getDevice(), KGraphicRectangle(0, 0, 64, 64));
        };
        draw(ActorEditor::Background::BlackChequer);
        EXPECT_EQ(pixel(1, 1), 0x000000);
        EXPECT_EQ(pixel(17, 1), 0x303030);
        EXPECT_EQ(pixel(17, 17), 0x000000);
        draw(ActorEditor::Background::WhiteChequer);
        EXPECT_EQ(pixel(1, 1), 0xD8D8D8);
        EXPECT_EQ(pixel(1, 17), 0xFFFFFF);
        draw(ActorEditor::Background::None);
        EXPECT_EQ(pixel(30, 30), 0x123456) << "nothing drawn";

        // No picture yet: the choice is refused and the chequer stays.
        draw(ActorEditor::Background::Picture);
        EXPECT_EQ(editor.getBackground(), ActorEditor::Background::None);
        std::string art = std::string(std::getenv("TALELOOM_TEST_SOURCE_DIR")) + "/data/art/tool-play.png";
        layer.answerChooser({ true, art });
        ASSERT_TRUE(editor.chooseBackgroundPicture());
        KImage picture;
        ASSERT_TRUE(picture.createFromPath(KString(art.c_str())));
        draw(ActorEditor::Background::StretchedPicture);
        KImage expected(KGraphicSize(64, 64));
        picture.drawIn(expected.getDevice(), KGraphicRectangle(0, 0, 64, 64));
        for (auto [x, y] : { std::pair { 5, 5 }, { 32, 32 }, { 60, 40 } })
            EXPECT_EQ(stage.getDevice().getPixel(int16_t(x), int16_t(y)),
                      expected.getDevice().getPixel(int16_t(x), int16_t(y)));
        layer.answerChooser({ true, "/nowhere/missing.png" });
        EXPECT_FALSE(editor.chooseBackgroundPicture());
        EXPECT_EQ(layer.alerts().back().text, "Unsupported Format!");
        EXPECT_EQ(editor.getBackground(), ActorEditor::Background::StretchedPicture) << "the old picture stays";
    });
}

TEST_F(ActorEditorTest, AnUntitledStoryHasNowhereToKeepAnActor)
{
    runApp({}, [&](TestApplication&) {
        ActorEditor& editor = *ActorEditor::current();
        editor.doNewActor();
        EXPECT_FALSE(editor.isEditing());
        ASSERT_FALSE(layer.alerts().empty());
        EXPECT_EQ(layer.alerts().back().text, "Actor editing is possible only after giving a name to current project");
        EXPECT_EQ(StylusWindow::current()->getWindowMode(), WindowMode::TapeEditing);
    });
}

TEST_F(ActorEditorTest, ADuplicateTakesAFreeName)
{
    runApp({ sampleCopy() }, [&](TestApplication& app) {
        app.turn(2);
        ActorEditor& editor = *ActorEditor::current();
        answerChoice(0);
        answerName("Walker 2");
        editor.doDuplicateActor();
        EXPECT_TRUE(script.finished());
        EXPECT_TRUE(fs::exists(actorsFolder() + "/Walker 2.ACT"));
        EXPECT_FALSE(editor.isEditing());
    });
}

// An actor comes into the story through its dialog and is then dragged
// to its place on the page.
TEST_F(ActorEditorTest, AnActorEntersTheStoryAndIsPlacedOnThePage)
{
    runApp({ sampleCopy() }, [&](TestApplication& app) {
        app.turn(2);
        StylusActions& actions = *StylusActions::current();
        StylusWindow& window = *StylusWindow::current();
        Tape& tape = *window.getTape();
        actions.goToEnd();
        int32_t count = tape.getCount();
        ASSERT_TRUE(actions.canInsertElement(ActorActionType));
        script.then<ActorActionDialog>([&](ActorActionDialog& dialog) {
            EXPECT_EQ(dialog.getActorName(), KString("Walker"));
            EXPECT_EQ(dialog.getAction(), ActorAction::EnterOnScene);
            EXPECT_FALSE(dialog.getMovementName().isEmpty()) << "the actor's movements are offered";
            click(dialog, "OK");
        });
        actions.insertElement(ActorActionType);
        EXPECT_TRUE(script.finished());
        ASSERT_EQ(tape.getCount(), count + 1);
        auto* action = dynamic_cast<ActorAction*>(tape.getAt(count));
        ASSERT_NE(action, nullptr);
        EXPECT_EQ(action->getActorName(), KString("Walker"));
        EXPECT_EQ(window.getEditMode(), EditMode::ActorPosition) << "the entrance is placed in place";
        window.stopEditing();
        EXPECT_EQ(window.getEditMode(), EditMode::None);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(ActorEditorTest, WithoutActorsTheActorDialogStaysShut)
{
    runApp({}, [&](TestApplication&) {
        StylusActions::current()->insertElement(ActorActionType);
        ASSERT_FALSE(layer.alerts().empty());
        EXPECT_EQ(layer.alerts().back().text, "No Actor In Project");
        EXPECT_EQ(openDialog<ActorActionDialog>(layer), nullptr);
    });
}

} // namespace
