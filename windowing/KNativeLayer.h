#pragma once

#include "windowing/KWindowingForward.h"

#include <cstdint>

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

    // Top-level windows. A handle is null when the window could not be made.
    virtual void* openWindow(KWindow& owner, const char* title, int32_t width, int32_t height) = 0;
    virtual void closeWindow(void* handle) = 0;
    virtual void showWindow(void* handle, bool visible) = 0;
    virtual void setWindowTitle(void* handle, const char* title) = 0;

    // The first file of a drop that a DropFiles message names; false when the
    // drop is unknown or empty.
    virtual bool droppedFile(int32_t drop, char* buffer, int32_t size);

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
constexpr int32_t kTimeDifference(uint32_t later, uint32_t earlier)
{
    return static_cast<int32_t>(later - earlier);
}
