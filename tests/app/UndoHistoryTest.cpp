// The undo history against a model: a long random run of the program's
// edits, undos and redos, with the tape's bytes after each undo and redo
// compared with what they were when that state was made.

#include "AppTestSupport.h"

#include "app/StylusActions.h"
#include "app/StylusClipboard.h"
#include "app/StylusWindow.h"
#include "app/UndoHistory.h"
#include "app/UndoStep.h"
#include "project/StylusProject.h"
#include "tape/Stroke.h"
#include "tape/StylusPause.h"
#include "tape/Tape.h"
#include "tests/graphics/StreamTestSupport.h"

#include <gtest/gtest.h>

#include <deque>
#include <random>
#include <string>
#include <vector>

using namespace apptest;

namespace {

using Bytes = std::vector<uint8_t>;

class UndoHistoryTest : public AppTest {
protected:
    // What undo and redo must give back: each step's state before and
    // after it, position included, wherever the user walked since.
    struct Step {
        Bytes before;
        Bytes after;
    };
    struct Model {
        std::deque<Step> past;
        std::vector<Step> future;
    };

    static Bytes bytesOf(Tape& tape) { return streams::of(tape); }

    int marks = 0;

    void paint(std::mt19937& random)
    {
        StylusWindow& window = *StylusWindow::current();
        std::uniform_int_distribution<int> place(20, 500);
        int16_t x = int16_t(place(random));
        int16_t y = int16_t(place(random));
        window.startStroke(KGraphicPoint(x, y), false);
        for (int16_t step = 1; step <= 4; ++step)
            window.continueStroke(KGraphicPoint(int16_t(x + 9 * step), int16_t(y + 5 * step)), false);
        window.endStroke(KGraphicPoint(int16_t(x + 40), int16_t(y + 30)), false);
    }

    static void insertPause(std::mt19937& random)
    {
        Tape& tape = *StylusWindow::current()->getTape();
        StylusPausePtr pause(new StylusPause());
        pause->setDuration(int32_t(random() % 5000));
        UndoStep step(&tape, UndoHistory::Name::Insert);
        tape.addElement(*pause);
    }

    // A dialog's OK in miniature: the element noted, then changed.
    void changeElement(Tape& tape, std::mt19937& random, bool bookmark)
    {
        if (tape.getPosition() < 1)
            return;
        TapeObject& element = *tape.getCurrentElement();
        UndoStep step(&tape, bookmark ? UndoHistory::Name::Bookmark : UndoHistory::Name::Change);
        step.willChange(element);
        if (bookmark)
            element.setBookmark(KString(("Mark " + std::to_string(++marks)).c_str()));
        else if (auto* pause = dynamic_cast<StylusPause*>(&element))
            pause->setDuration(pause->getDuration() + 1 + int32_t(random() % 900));
        else if (auto* stroke = dynamic_cast<Stroke*>(&element))
            stroke->setColour(KColor(uint16_t(random()), uint16_t(stroke->getColour().getGreen() ^ 0x8000), 0));
        else
            element.setBookmark(KString(("Mark " + std::to_string(++marks)).c_str()));
    }
};

} // namespace

TEST_F(UndoHistoryTest, TwoHundredRandomEditsUndoAndRedoToTheByte)
{
    runApp({}, [&](TestApplication& app) {
        Tape& tape = *app.getProject()->getTape();
        UndoHistory& history = *UndoHistory::current();
        StylusClipboard& clipboard = *StylusClipboard::current();
        StylusActions& actions = *StylusActions::current();
        std::mt19937 random(20261124);
        Model model;
        int undos = 0;
        int redos = 0;
        for (int turn = 0; turn < 200; ++turn) {
            // The position moves freely between steps, as the user walks.
            tape.setPositionQuietly(int32_t(random() % uint32_t(tape.getCount() + 1)));
            int choice = int(random() % 20);
            if (choice < 3 && !model.past.empty()) {
                history.undo(tape);
                ASSERT_EQ(bytesOf(tape), model.past.back().before) << "undo at turn " << turn;
                model.future.push_back(model.past.back());
                model.past.pop_back();
                ++undos;
                continue;
            }
            if (choice < 5 && !model.future.empty()) {
                history.redo(tape);
                ASSERT_EQ(bytesOf(tape), model.future.back().after) << "redo at turn " << turn;
                model.past.push_back(model.future.back());
                model.future.pop_back();
                ++redos;
                continue;
            }
            Bytes before = bytesOf(tape);
            if (choice < 9) {
                paint(random);
            } else if (choice < 12) {
                insertPause(random);
            } else if (choice < 13) {
                actions.deleteLast();
            } else if (choice < 14) {
                clipboard.cut();
            } else if (choice < 16) {
                clipboard.copyRange(int32_t(random() % 8), int32_t(random() % 8), false);
                clipboard.paste();
            } else if (choice < 17) {
                clipboard.clearRange(int32_t(random() % 10), int32_t(random() % 10));
            } else {
                changeElement(tape, random, choice == 17);
            }
            // Only an edit that changed the elements is a step; the walk
            // before it belongs to the state it started from.
            if (Bytes after = bytesOf(tape); after != before) {
                ASSERT_TRUE(history.canUndo(&tape)) << "a step was not recorded at turn " << turn;
                ASSERT_FALSE(history.canRedo(&tape)) << "a new step leaves nothing to redo";
                model.past.push_back({ before, after });
                model.future.clear();
                if (model.past.size() > UndoHistory::kDepth)
                    model.past.pop_front();
            }
            ASSERT_EQ(history.undoCount(), model.past.size()) << "turn " << turn;
        }
        EXPECT_GT(undos, 15);
        EXPECT_GT(redos, 5);
        // Everything kept can be taken back, to the oldest state kept.
        while (!model.past.empty()) {
            history.undo(tape);
            ASSERT_EQ(bytesOf(tape), model.past.back().before);
            model.past.pop_back();
        }
        EXPECT_FALSE(history.canUndo(&tape));
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(UndoHistoryTest, AHundredStepsAreKeptAndAnotherProjectStartsOver)
{
    runApp({}, [&](TestApplication& app) {
        Tape& tape = *app.getProject()->getTape();
        UndoHistory& history = *UndoHistory::current();
        std::mt19937 random(7);
        for (int i = 0; i < 120; ++i)
            insertPause(random);
        EXPECT_EQ(history.undoCount(), UndoHistory::kDepth);
        EXPECT_EQ(history.undoTitle(&tape), KString("Undo Insert"));
        for (size_t i = 0; i < UndoHistory::kDepth; ++i)
            history.undo(tape);
        EXPECT_EQ(tape.getCount(), 20) << "the first twenty are beyond reach";
        EXPECT_FALSE(history.canUndo(&tape));
        EXPECT_EQ(history.redoTitle(&tape), KString("Redo Insert"));

        StylusProjectPtr other(new StylusProject());
        other->setTape(*kAdopt(new Tape()));
        StylusActions::current()->installProject(*other);
        EXPECT_EQ(history.redoCount(), 0u);
        EXPECT_FALSE(history.canUndo(other->getTape()));
        layer.answerMessageBox(KNativeAnswer::No);
    });
}
