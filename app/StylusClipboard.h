#pragma once

#include "kernel/KString.h"
#include "kernel/KThing.h"
#include "kernel/KThingPtr.h"
#include "tape/TapeForward.h"
#include "tape/TapeObject.h"
#include "windowing/KTimer.h"

#include <cstdint>
#include <vector>

// The program's own clipboard of tape elements. It works on the tape the
// main window shows (a story or an actor's frame). What is copied is a
// private tape of copies, so the clip stays as it was whatever happens to
// the elements on the page.
//
// Every cut, clear and paste is a step of the undo history, which keeps
// the elements themselves: the undo never reads the clip.
class StylusClipboard : public KThing {
    K_DECLARE_CLASS(StylusClipboard)
public:
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
    // A picture or files copied in another program since are pasted
    // instead, as new elements.
    void paste();

    bool canCopy() const;
    bool canPaste() const;
    // The system clipboard changed hands: whether it offers a picture or
    // files is asked again, once, when the menus want to know.
    void systemClipboardChanged() { offered = -1; }
    Tape& getClipTape() const { return *clip; }

    // The private format on the system clipboard: the clip as a project
    // stream, beside a picture of it for other programs.
    static constexpr const char* kSystemFormat = "application/x-taleloom-elements";
    // Larger data on the system clipboard is no clip of ours.
    static constexpr size_t kLargestClip = size_t(64) << 20;
    // Puts the clip on the system clipboard at the loop's next turn: the
    // picture of a long clip takes longer to draw than the copy itself,
    // and the command should not wait for it.
    void publish();
    // Puts a clip still waiting on the system clipboard now.
    void publishNow();
    bool isPublishing() const;
    void timerFired(KTimer& timer) override;
    // Takes elements another TaleLoom put on the system clipboard into the
    // clip; false when there are none, they are the clip's own, or the
    // data is damaged or newer (the clip then stays as it was).
    bool takeFromSystem();

private:
    Tape* shownTape() const;
    static TapeObjectPtr copyOf(TapeObject& element);
    void fill(Tape& target, Tape& source, int32_t first, int32_t last, bool onlyStrokes);
    void takeOut(Tape& tape, int32_t first, int32_t last, bool keepInClip);
    bool pasteFromOtherPrograms(Tape& tape);
    void insertPasted(Tape& tape, const std::vector<TapeObjectPtr>& elements);
    void redrawFrom(Tape& tape);

    std::vector<uint8_t> published;
    TapePtr clip;
    KTimerPtr publishTimer;
    // Asking the clipboard's owner can take as long as the owner likes;
    // the answer holds until the clipboard changes. -1 is not asked yet.
    mutable int8_t offered = -1;
};
