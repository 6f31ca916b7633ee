#pragma once

#include "windowing/KEvent.h"

// A key. Printable keys carry their character code; the others carry the
// codes below, which application code compares against.
class KKeyEvent : public KEvent {
    K_DECLARE_CLASS(KKeyEvent)
public:
    enum Type : int32_t { KeyDown = 0, KeyUp = 1, KeyRepeat = 2 };
    enum Code : int32_t {
        F1 = 256,
        F15 = 270,
        Up = 271,
        Down = 272,
        Left = 273,
        Right = 274,
        Home = 275,
        End = 276,
        PageUp = 277,
        PageDown = 278,
        Help = 279,
        Delete = 280,
        Backspace = 281,
        Tab = 282,
        Return = 283,
        Escape = 284,
    };

    KKeyEvent();
    KKeyEvent(int32_t type, KWindow* window, int32_t keyCode, int32_t modifiers);

    KWindow* getWindow() const { return window.get(); }
    void setWindow(KWindow* value) { window = value; }
    int32_t getKeyCode() const { return keyCode; }
    void setKeyCode(int32_t value) { keyCode = value; }
    // 1 Shift, 2 Control, 4 Caps Lock, 8 Num Lock.
    int32_t getModifiers() const { return modifiers; }
    void setModifiers(int32_t value) { modifiers = value; }

    KEventReturn process() override;
    // The route of the application's handlers, by type.
    KEventReturn processByApplication();

private:
    KWindowPtr window;
    int32_t keyCode = 0;
    int32_t modifiers = 0;
};
