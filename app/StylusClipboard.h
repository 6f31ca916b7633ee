#pragma once

#include "kernel/KString.h"
#include "kernel/KThing.h"
#include "kernel/KThingPtr.h"
#include "tape/TapeForward.h"

#include <cstdint>
#include <vector>

// The program's own clipboard of tape elements, and the undo of its last
// cut, paste or clear. It works on the tape the main window shows (a story
// or an actor's frame). What is copied is a private tape of copies, so the
// clip stays as it was whatever happens to the elements on the page.
//
// Every cut, clear and paste keeps copies of its own for the undo: the undo
// never reads the clip. An undo belongs to the tape it was made on; on
// another tape there is nothing to undo.
class StylusClipboard : public KThing {
    K_DECLARE_CLASS(StylusClipboard)
public:
    enum UndoKind : int32_t { NoUndo = 0, UndoCut = 1, UndoPaste = 2, UndoClear = 3, RedoRemoval = 4, RedoPaste = 5 };
    enum Operation : int32_t { NoOperation = 0, CutOperation = 1, PasteOperation = 2, ClearOperation = 3 };

    StylusClipboard();
    ~StylusClipboard() override;
    static StylusClipboard* current();

    // The element before the position.
    void copy();
    void cut();
    void clear();
    // Indexes from `first` to `last`, both included; only strokes when
    // asked (an actor's frame holds nothing else).
    void copyRange(int32_t first, int32_t last, bool onlyStrokes);
    void cutRange(int32_t first, int32_t last);
    void clearRange(int32_t first, int32_t last);
    // Copies of the clip go in at the position, in one step. An actor's
    // frame takes strokes only and says so when something was left out.
    void paste();
    // Takes the last cut, paste or clear back, and a second undo makes it
    // again.
    void undo();

    bool canCopy() const;
    bool canPaste() const;
    bool canUndo() const;
    // "Undo Cut", "Redo Paste", and the like; "Can't Undo" without a step.
    KString undoTitle() const;
    Tape& getClipTape() const { return *clip; }

    // The private format on the system clipboard: the clip as a project
    // stream, beside a picture of it for other programs.
    static constexpr const char* kSystemFormat = "application/x-taleloom-elements";
    // Larger data on the system clipboard is no clip of ours.
    static constexpr size_t kLargestClip = size_t(64) << 20;
    // Puts the clip on the system clipboard.
    void publish();
    // Takes elements another TaleLoom put on the system clipboard into the
    // clip; false when there are none, they are the clip's own, or the
    // data is damaged or newer (the clip then stays as it was).
    bool takeFromSystem();

private:
    Tape* shownTape() const;
    static TapeObjectPtr copyOf(TapeObject& element);
    void fill(Tape& target, Tape& source, int32_t first, int32_t last, bool onlyStrokes);
    void takeOut(Tape& tape, int32_t first, int32_t last, bool keepInClip, UndoKind kind);
    void putBack(Tape& tape, Tape& from, int32_t at);
    void redrawFrom(Tape& tape);
    void remember(Tape& tape, int32_t at, UndoKind kind);

    std::vector<uint8_t> published;
    TapePtr clip;
    TapePtr undoTape;
    // The tape the undo belongs to; compared, never used.
    const Tape* undoOwner = nullptr;
    int32_t undoIndex = 0;
    int32_t undoCount = 0;
    UndoKind undoKind = NoUndo;
    Operation lastOperation = NoOperation;
    bool undone = false;
};
