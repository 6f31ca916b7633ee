#pragma once

#include "kernel/KString.h"
#include "tape/TapeForward.h"
#include "tape/TapeObject.h"

#include <cstdint>
#include <deque>
#include <map>
#include <vector>

// Every edit of the shown tape, kept so that it can be taken back and made
// again: a stroke, an insert, a delete, a cut, a paste, a dialog's change,
// a move or resize on the page, typing, a bookmark, an inserted project.
//
// A step is what the tape goes through between begin() and end(). It is
// kept as the elements it took out and put in at one place (found by
// comparing the tape's elements before and after, never by copying the
// tape), and for elements changed where they stand, a copy of each before
// and after; willChange() must be called before such a change. Undo and
// redo give back the tape's elements and position exactly.
//
// The history belongs to one tape. It starts over when another tape is
// edited, and when the tape's elements were changed outside any step, for
// then its places would no longer be right.
class UndoHistory {
public:
    enum class Name : int32_t {
        Stroke,
        Insert,
        Delete,
        Cut,
        Paste,
        Clear,
        Change,
        Move,
        Typing,
        Bookmark,
        InsertProject,
    };
    // Children erase by mistake; a hundred steps reach far back.
    static constexpr size_t kDepth = 100;

    UndoHistory();
    ~UndoHistory();
    UndoHistory(const UndoHistory&) = delete;
    UndoHistory& operator=(const UndoHistory&) = delete;
    // The program's history; null outside the program.
    static UndoHistory* current();

    // Steps nest: an inner step is part of the outer one and keeps its
    // name.
    void begin(Tape& tape, Name name);
    void end();
    bool isRecording() const { return depth > 0; }
    // Before the element changes where it stands; nothing outside a step.
    void willChange(TapeObject& element);

    bool canUndo(const Tape* tape) const;
    bool canRedo(const Tape* tape) const;
    // "Undo Stroke", "Redo Paste"; "Can't Undo" and "Can't Redo" when
    // there is nothing to take back or make again on the tape.
    KString undoTitle(const Tape* tape) const;
    KString redoTitle(const Tape* tape) const;
    void undo(Tape& tape);
    void redo(Tape& tape);
    // Another project: nothing to go back to.
    void reset();
    size_t undoCount() const { return done.size(); }
    size_t redoCount() const { return undone.size(); }

private:
    struct Change {
        int32_t index = 0;
        TapeObjectPtr before;
        TapeObjectPtr after;
    };
    struct Step {
        Name name = Name::Change;
        int32_t at = 0;
        std::vector<TapeObjectPtr> removed;
        std::vector<TapeObjectPtr> added;
        std::vector<Change> changes;
        int32_t positionBefore = 0;
        int32_t positionAfter = 0;
    };

    static uint64_t fingerprint(const Tape& tape);
    static std::vector<TapeObjectPtr> elementsOf(const Tape& tape);
    bool owns(const Tape* tape) const;
    void adopt(Tape& tape);
    Step finishStep(Tape& tape);
    void keepChanges(Step& step, const std::vector<TapeObjectPtr>& after);
    static void takeBack(Tape& tape, Step& step);
    static void makeAgain(Tape& tape, Step& step);
    void settle(Tape& tape);
    static KString titleOf(Name name, bool redo);

    std::deque<Step> done;
    std::vector<Step> undone;
    const Tape* owner = nullptr;
    uint64_t expected = 0;

    // The step being recorded.
    int32_t depth = 0;
    Tape* recording = nullptr;
    Name recordingName = Name::Change;
    std::vector<TapeObjectPtr> before;
    int32_t positionBefore = 0;
    std::map<const TapeObject*, TapeObjectPtr> originals;
};
