#pragma once

#include "tape/TapeObject.h"

// Stops the story until the sounds or the speech that play have ended, or
// until the user answers with a key or a click, in that order of what it
// waits for. It draws nothing; while it waits for the user, the cursor is
// shown and, with `visualWarning`, the main window blinks its wait marks.
//
// A click counts when the button goes up, and only a press that began
// while the wait was listening: the release of an earlier press does not
// answer it. The keys that stop the play (Escape, Control and full stop)
// are left to the window.
class WaitObject : public TapeObject {
    K_DECLARE_CLASS(WaitObject)
public:
    enum class Phase : int32_t {
        Nothing = 0,
        Sounds = 1,
        Speech = 2,
        User = 3,
        Answered = 4,
        ButtonDown = 5,
    };
    using enum Phase;

    WaitObject();
    WaitObject(const WaitObject& other);
    ~WaitObject() override;

    KThing* deepCopy() const override;
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    void startPlaying() override;
    void playStep() override;
    void stopPlaying() override;
    void redrawOver() override;
    KEventReturn handleKeyDown(KKeyEvent& event) override;
    KEventReturn handleMouseDown(KMouseEvent& event) override;
    KEventReturn handleMouseUp(KMouseEvent& event) override;

    bool getWaitForSounds() const { return waitForSounds; }
    void setWaitForSounds(bool value) { waitForSounds = value; }
    bool getWaitForSpeech() const { return waitForSpeech; }
    void setWaitForSpeech(bool value) { waitForSpeech = value; }
    bool getWaitForUser() const { return waitForUser; }
    void setWaitForUser(bool value) { waitForUser = value; }
    bool getVisualWarning() const { return visualWarning; }
    void setVisualWarning(bool value) { visualWarning = value; }
    bool getStopSounds() const { return stopSounds; }
    void setStopSounds(bool value) { stopSounds = value; }
    bool getStopSpeech() const { return stopSpeech; }
    void setStopSpeech(bool value) { stopSpeech = value; }
    // At least one thing to wait for is checked.
    bool waitsForAnything() const { return waitForSounds || waitForSpeech || waitForUser; }

    Phase getPhase() const { return phase; }
    bool getCursorWasVisible() const { return cursorWasVisible; }
    bool areMarksShown() const { return marksShown; }

    // The keys that stop the play: never an answer to a wait.
    static bool isStopKey(const KKeyEvent& event);

private:
    void enterUserPhase();
    void showMarks(bool shown);
    void finish();
    void answer();
    // Whether any medium of the kind in the media manager's list still
    // plays, and stopping them all.
    template<class Media>
    static bool anyStillPlays();
    template<class Media>
    static void stopAll();

    bool waitForSounds = false;
    bool waitForSpeech = false;
    bool waitForUser = true;
    bool visualWarning = true;
    bool stopSounds = true;
    bool stopSpeech = true;
    bool cursorWasVisible = true;
    bool cursorShown = false;
    bool marksShown = false;
    bool listening = false;
    Phase phase = Nothing;
};
