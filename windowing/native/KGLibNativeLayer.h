#pragma once

#include "windowing/KNativeLayer.h"
#include "windowing/native/KGLibMessageSlot.h"

#include <atomic>

// The native layer's services that need no display: the loop's blocking
// wait on GLib's default main context, the cross-thread wake-up and the
// monotonic clock, and the local message channel. Windows made without a display are bare records, so the
// framework runs headless too.
class KGLibNativeLayer : public KNativeLayer {
public:
    KGLibNativeLayer();
    ~KGLibNativeLayer() override;

    bool initialize() override;
    void shutDown() override;
    void processNativeMessage(bool block, bool& keepRunning, int32_t waitMs) override;
    // GLib's waits are exact to the millisecond: only a deadline already
    // reached is polled for.
    int32_t minimumWait() const override { return 0; }
    uint32_t now() const override;
    void wakeUp() override;
    // Safe from any thread, like wakeUp.
    void postQuit(int32_t exitCode) override;
    int32_t modifierState() const override;
    bool cursorPosition(int32_t& x, int32_t& y) override;
    bool hasDisplay() const override;
    void* openWindow(KWindow& owner, const KNativeWindowSetup& setup) override;
    void closeWindow(void* handle) override;
    void showWindow(void* handle, bool visible) override;
    void setWindowTitle(void* handle, const char* title) override;

    bool openMessageSlot(const char* name) override;
    void closeMessageSlot() override;
    int32_t nextSlotMessageSize() override;
    int32_t readSlotMessage(char* buffer, int32_t size) override;
    bool sendSlotMessages(const char* name, const std::vector<std::string>& messages) override;
    void watchTermination(SignalHandler handler) override;
    void watchStateRequest(SignalHandler handler) override;

private:
    KGLibMessageSlot messageSlot;
    std::atomic<bool> quitPending { false };
    std::atomic<int32_t> pendingExitCode { 0 };
};
