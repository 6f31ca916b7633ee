#pragma once

#include "windowing/KNativeTypes.h"
#include "windowing/KWindowingForward.h"

#include <cstdint>
#include <string>
#include <vector>

// The flat list of operations the framework asks of the platform. Everything
// above it is platform free. One layer is installed for the whole process;
// the GLib/GTK layer runs the program, a fake one drives the tests.
class KNativeLayer {
public:
    virtual ~KNativeLayer();

    // Prepares the platform (the OS side of entering the kernel) and tells
    // whether the program can run on it.
    virtual bool initialize() = 0;
    virtual void shutDown() = 0;

    // Takes at most one turn of the native queue: waits for it when `block`
    // is set, for at most `waitMs` milliseconds (0 means no limit), and
    // delivers what arrived through kksDeliverNativeRecord. The quit message
    // clears `keepRunning` and records its exit code.
    virtual void processNativeMessage(bool block, bool& keepRunning, int32_t waitMs) = 0;
    // A deadline nearer than this many milliseconds is polled for instead of
    // waited for: coarse native waits would oversleep it.
    virtual int32_t minimumWait() const { return 6; }

    // Milliseconds of a clock that never goes backward. The value wraps at
    // 32 bits: compare two times only through their signed difference.
    virtual uint32_t now() const = 0;
    // Makes a blocking processNativeMessage return. Safe from any thread.
    virtual void wakeUp() = 0;
    // Queues the quit message; the loop ends when it arrives.
    virtual void postQuit(int32_t exitCode) = 0;
    int32_t exitCode() const { return quitCode; }

    // The keys held now: 1 Shift, 2 Control, 4 Caps Lock, 8 Num Lock.
    virtual int32_t modifierState() const = 0;
    // The pointer's screen position; false when the platform cannot tell.
    virtual bool cursorPosition(int32_t& x, int32_t& y) = 0;
    virtual bool hasDisplay() const = 0;

    // --- Windows ---------------------------------------------------------------
    // A handle is null when the window could not be made. The window's
    // device is its back buffer: the native side shows it and asks the
    // window to paint through Paint records.
    virtual void* openWindow(KWindow& owner, const KNativeWindowSetup& setup) = 0;
    virtual void closeWindow(void* handle) = 0;
    virtual void showWindow(void* handle, bool visible) = 0;
    virtual void setWindowTitle(void* handle, const char* title) = 0;
    // Moves and sizes the client area (screen terms).
    virtual void setWindowBounds(void* handle, const KNativeRect& client);
    // Stacks the windows so that the last is in front.
    virtual void restackWindows(const std::vector<void*>& backToFront);
    // A disabled window takes no input.
    virtual void setWindowEnabled(void* handle, bool enabled);
    virtual void setWindowModal(void* handle, bool modal);
    // Asks for the area (client terms) to be shown again from the back
    // buffer.
    virtual void invalidateWindow(void* handle, const KNativeRect& area);
    // The hover hint of a window; null or empty removes it.
    virtual void setWindowTooltip(void* handle, const char* text);
    // The controls the window draws itself, for screen readers: each
    // becomes an accessible child of the window's drawing, in this order.
    // A new list replaces the old one.
    virtual void setAccessibleControls(void* handle, const std::vector<KNativeAccessible>& controls);
    virtual void screenSize(int32_t& width, int32_t& height) const;

    // --- Controls -----------------------------------------------------------
    // Native widgets placed at pixel positions over a window's client area.
    // Their notifications come as Command records with the setup's tag.
    virtual void* createControl(void* window, const KNativeControlSetup& setup);
    virtual void destroyControl(void* control);
    virtual void setControlBounds(void* control, const KNativeRect& bounds);
    virtual void setControlText(void* control, const char* text);
    virtual void setControlEnabled(void* control, bool enabled);
    virtual void setControlVisible(void* control, bool visible);
    // The parts of a control beyond its text, each for the kinds that have
    // it (see KNativeControlSetup). Setting a part tells nothing back: only
    // the user's changes make Changed notifications.
    virtual void setControlValue(void* control, double value);
    virtual void setControlItems(void* control, const std::vector<std::string>& items);
    virtual void setControlRange(void* control, const KNativeControlRange& range);
    virtual void setControlTextLimit(void* control, int32_t limit);
    virtual void setControlColour(void* control, const KNativeColour& colour);
    virtual void setControlPicture(void* control, const KNativeImageData& picture);
    // What the user left in a control, read when it notifies a change;
    // false when the control has no such part.
    virtual bool controlValue(void* control, double& value);
    virtual bool controlText(void* control, std::string& text);

    // --- Styled text -----------------------------------------------------------
    // The text of a StyledText control, with its styles; loading it
    // selects nothing and puts the caret at the start.
    virtual void setControlStyledText(void* control, const KNativeStyledText& text);
    virtual bool controlStyledText(void* control, KNativeStyledText& text);
    // The selection in character positions of the styled text; a length of
    // 0 is the bare caret. Out-of-range values are clipped.
    virtual void selectControlText(void* control, int32_t start, int32_t length);
    virtual bool controlSelection(void* control, int32_t& start, int32_t& length);
    virtual void changeControlTextStyle(void* control, const KNativeStyleChange& change);
    // A key the framework hands to a control that takes keys: a character
    // (32 to 255) or one of the key codes of KKeyEvent (Return, Backspace,
    // Delete, the arrows, Home, End).
    virtual void sendControlKey(void* control, int32_t key, int32_t modifiers);
    // The keyboard goes to the control.
    virtual void focusControl(void* control);

    // --- Menus -------------------------------------------------------------------
    // Shows the menu at a point of the window's client area and waits for
    // the user: the chosen item's number, or 0 when the menu was dismissed.
    virtual int32_t popUpMenu(void* window, const std::vector<KNativeMenuItem>& items, int32_t x, int32_t y);

    // A strip of menus above the window's client area (the client area
    // keeps its size). The top entries are the menus, their children the
    // items; every id is a command number. The native side tells:
    // - a menu about to be shown: a MenuPopup record with the menu's id in
    //   param1, delivered at once so that the items can be updated before
    //   the user sees them;
    // - an item chosen: a Command record with the item's id in param1 and 0
    //   in param2;
    // - an accelerator typed in the window: an Accelerator record with the
    //   key in param1. It comes whether its items are enabled or not and
    //   whether the strip shows or not; the key then makes no key event.
    // Installing a new tree replaces the window's strip.
    virtual void setMenuBar(void* window, const std::vector<KNativeMenuItem>& menus);
    // New titles, ticks and enabling for the items of the same ids; the
    // tree given to setMenuBar stays.
    virtual void updateMenuBar(void* window, const std::vector<KNativeMenuItem>& menus);
    // A hidden strip leaves its accelerators working.
    virtual void showMenuBar(void* window, bool shown);
    virtual void removeMenuBar(void* window);
    // The clipboard commands of a control that edits text.
    virtual void editControlText(void* control, KNativeTextEdit edit);

    // --- Pointer ------------------------------------------------------------
    // The longest time between two presses of a double click, and the
    // distance within which they count as one place.
    virtual int32_t doubleClickTime() const { return 500; }
    virtual int32_t doubleClickDistance() const { return 4; }
    virtual void setCursorShape(KCursorShape shape);
    virtual void setCursorVisible(bool visible);

    // --- Clipboard ------------------------------------------------------------
    // Replaces the clipboard's content; false when there is no clipboard.
    virtual bool setClipboard(const KNativeClipboardContent& content);
    // kClipboardText, kClipboardImage or a private format's name.
    virtual bool clipboardHasFormat(const char* format);
    virtual bool clipboardText(std::string& text);
    virtual bool clipboardImage(KNativeImageData& image);
    virtual bool clipboardData(const char* format, std::vector<uint8_t>& data);
    // Hands the program's clipboard to the system, so that it outlives the
    // program.
    virtual void storeClipboard();

    // --- Choosers and boxes -----------------------------------------------------
    // False when the user cancels (or nothing can be shown); the path is
    // then untouched.
    virtual bool chooseFile(const KNativeChooserRequest& request, std::string& path);
    virtual bool chooseColour(const char* title, KNativeColour& colour);
    // One of KNativeAnswer.
    virtual int32_t messageBox(const KNativeAlertRequest& alert);

    // --- Printing ------------------------------------------------------------------
    // The page set-up dialog; false when cancelled (the margins are then
    // untouched). The paper chosen is kept for the jobs that follow.
    virtual bool runPageSetup(KNativePageSetupRequest& request);
    // The size of the paper the next job uses, in points; false when there
    // is no printing.
    virtual bool printPaperSize(double& widthPoints, double& heightPoints);
    virtual bool isPrintLandscape();
    // One of KNativePrintJob::Outcome; a failure says why in `error`.
    virtual int32_t runPrintJob(const KNativePrintJob& job, std::string& error);
    virtual void beep();

    // --- The local message channel -----------------------------------------------
    // Messages keep their boundaries and are at most 128 bytes.
    virtual bool openMessageSlot(const char* name);
    virtual void closeMessageSlot();
    // The size of the next message, or -1 when there is none.
    virtual int32_t nextSlotMessageSize();
    // Reads the next message into the buffer; its size, or -1.
    virtual int32_t readSlotMessage(char* buffer, int32_t size);
    // Sends the messages in order to the slot of that name.
    virtual bool sendSlotMessages(const char* name, const std::vector<std::string>& messages);

    // The first file of a drop that a DropFiles message names; false when the
    // drop is unknown or empty.
    virtual bool droppedFile(int32_t drop, char* buffer, int32_t size);

    // --- The desktop ----------------------------------------------------------------
    // The window fills the screen, undecorated, or goes back to its frame.
    virtual void setWindowFullScreen(void* handle, bool fullScreen);
    // The part of the screen that windows may use (without panels); the
    // whole screen when it cannot be told.
    virtual KNativeRect workArea() const;
    // The desktop's list of recently used files; a UTF-8 path.
    virtual void addRecentFile(const char* path);
    // Runs `handler` on the loop's thread when the session ends the program
    // (SIGTERM, SIGHUP, SIGINT); it decides whether to quit.
    using SignalHandler = void (*)(int signal);
    virtual void watchTermination(SignalHandler handler);
    // Runs `handler` on the loop's thread when someone asks the program to
    // describe itself (SIGUSR1).
    virtual void watchStateRequest(SignalHandler handler);

    static void install(KNativeLayer* layer);
    static KNativeLayer* current();
    // current(), or a fatal error when no layer is installed.
    static KNativeLayer& get();

protected:
    void setExitCode(int32_t code) { quitCode = code; }

private:
    int32_t quitCode = 0;
};

// The kernel's entry and exit around the application's life.
void knsEnterKernel();
void knsExitKernel();
void knsProcessNativeMessage(bool block, bool& keepRunning, int32_t waitMs);
// The installed layer's clock; 0 when there is no layer.
uint32_t knsGetTime();

// The milliseconds from `earlier` to `later` on the wrapping clock.
constexpr int32_t kTimeDifference(uint32_t later, uint32_t earlier) { return static_cast<int32_t>(later - earlier); }
