#pragma once

#include "windowing/KActionEvent.h"

// A control's action: the control, its parents, its layer and its window
// come before the application.
class KControlActionEvent : public KActionEvent {
    K_DECLARE_CLASS(KControlActionEvent)
public:
    // The types the native controls use: a press, a value the user
    // changed, an item confirmed (a double click on a list's item).
    enum ControlAction : int32_t { Clicked = 1, Changed = 2, Activated = 3 };

    KControlActionEvent();
    KControlActionEvent(int32_t type, KThing* control);

    KEventReturn process() override;
};
