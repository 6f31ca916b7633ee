#pragma once

#include "app/UndoHistory.h"

// One step of the program's undo history for the scope's length: what the
// tape goes through meanwhile is taken back by one undo. Without a history
// (outside the program) it does nothing.
class UndoStep {
public:
    UndoStep(Tape* tape, UndoHistory::Name name)
        : history(tape ? UndoHistory::current() : nullptr)
    {
        if (history)
            history->begin(*tape, name);
    }
    ~UndoStep()
    {
        if (history)
            history->end();
    }
    UndoStep(const UndoStep&) = delete;
    UndoStep& operator=(const UndoStep&) = delete;

    // Before the element changes where it stands.
    void willChange(TapeObject& element)
    {
        if (history)
            history->willChange(element);
    }

private:
    UndoHistory* history;
};
