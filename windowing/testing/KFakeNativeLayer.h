#pragma once

#include "windowing/KNativeLayer.h"
#include "windowing/KNativeRecord.h"

#include <memory>
#include <string>
#include <vector>

// A native layer for tests: native records come from a script the test
// fills, time from a clock that moves only when told (or when the loop
// waits, by the time it waits), and windows are plain records. If the loop
// would wait forever with nothing scripted, the layer reports it through the
// stuck procedure and ends the loop instead of hanging.
class KFakeNativeLayer : public KNativeLayer {
public:
    struct Turn {
        bool block = false;
        int32_t wait = 0;
    };
    struct Window {
        KWindow* owner = nullptr;
        std::string title;
        int32_t width = 0;
        int32_t height = 0;
        bool visible = false;
        bool open = true;
    };
    using StuckProc = void (*)(const char* message);

    KFakeNativeLayer();
    ~KFakeNativeLayer() override;

    bool initialize() override;
    void shutDown() override;
    void processNativeMessage(bool block, bool& keepRunning, int32_t waitMs) override;
    int32_t minimumWait() const override { return minimumWaitMs; }
    uint32_t now() const override { return clock; }
    void wakeUp() override;
    void postQuit(int32_t exitCode) override;
    int32_t modifierState() const override { return modifiers; }
    bool cursorPosition(int32_t& x, int32_t& y) override;
    bool hasDisplay() const override { return false; }
    void* openWindow(KWindow& owner, const char* title, int32_t width, int32_t height) override;
    void closeWindow(void* handle) override;
    void showWindow(void* handle, bool visible) override;
    void setWindowTitle(void* handle, const char* title) override;
    bool droppedFile(int32_t drop, char* buffer, int32_t size) override;

    // Delivered on the next turn, in the order scripted.
    void script(const KNativeRecord& record);
    // Delivered on the first turn at or after `time`; a waiting loop wakes
    // for it.
    void scriptAt(uint32_t time, const KNativeRecord& record);
    int32_t pendingRecords() const { return static_cast<int32_t>(scripted.size()); }
    // A drop of files, named by the returned number in a DropFiles record.
    int32_t addDrop(const std::vector<std::string>& files);

    void advance(uint32_t milliseconds) { clock += milliseconds; }
    void setTime(uint32_t time) { clock = time; }
    void setModifiers(int32_t flags) { modifiers = flags; }
    void setCursor(int32_t x, int32_t y);
    void setMinimumWait(int32_t milliseconds) { minimumWaitMs = milliseconds; }
    // How far the clock moves on a turn that does not wait.
    void setPollStep(uint32_t milliseconds) { pollStep = milliseconds; }
    void setCanRun(bool value) { canRun = value; }
    void setStuckProc(StuckProc proc) { stuckProc = proc; }

    const std::vector<Turn>& turns() const { return recordedTurns; }
    void clearTurns() { recordedTurns.clear(); }
    int32_t wakeUpCount() const { return wakeUps; }
    int32_t quitCount() const { return quitPosts; }
    bool wasStuck() const { return stuck; }
    bool isInitialized() const { return initialized; }
    const Window* windowOf(void* handle) const;
    // Every window opened so far, closed ones included.
    std::vector<const Window*> windows() const;

private:
    struct Entry {
        KNativeRecord record;
        uint32_t time = 0;
        bool timed = false;
    };
    bool deliverDue(bool& keepRunning);
    bool earliestTimed(uint32_t& time) const;
    void deliver(KNativeRecord record, bool& keepRunning);
    void waitUntilNextEvent(int32_t waitMs, bool& keepRunning);

    uint32_t clock = 1000;
    uint32_t pollStep = 1;
    int32_t minimumWaitMs = 6;
    int32_t modifiers = 0;
    int32_t cursorX = 0;
    int32_t cursorY = 0;
    bool cursorKnown = false;
    bool canRun = true;
    bool initialized = false;
    bool quitPending = false;
    int32_t pendingExitCode = 0;
    bool wakePending = false;
    int32_t wakeUps = 0;
    int32_t quitPosts = 0;
    bool stuck = false;
    StuckProc stuckProc = nullptr;
    std::vector<Entry> scripted;
    std::vector<Turn> recordedTurns;
    std::vector<std::unique_ptr<Window>> openedWindows;
    std::vector<std::vector<std::string>> drops;
};
