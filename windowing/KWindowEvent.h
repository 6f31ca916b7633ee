#pragma once

#include "windowing/KEvent.h"

// Something that happened to a window's frame.
class KWindowEvent : public KEvent {
    K_DECLARE_CLASS(KWindowEvent)
public:
    enum Type : int32_t {
        Paint = 0,
        EraseBackground = 1,
        Moved = 2,
        Resized = 3,
        CloseRequest = 4,
        Activated = 5,
        Deactivated = 6,
    };

    KWindowEvent();
    KWindowEvent(int32_t type, KWindow* window);

    KWindow* getWindow() const { return window.get(); }
    void setWindow(KWindow* value) { window = value; }

    KEventReturn process() override;

private:
    KEventReturn paint();
    KEventReturn eraseBackground();
    KEventReturn moved();
    KEventReturn resized();
    KEventReturn closeRequest();
    KEventReturn activated();
    KEventReturn deactivated();
    void updateBounds();

    KWindowPtr window;
};
