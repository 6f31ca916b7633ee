#pragma once

#include "windowing/KActionEvent.h"

// A control's action: the control, its parents, its layer and its window
// come before the application.
class KControlActionEvent : public KActionEvent {
    K_DECLARE_CLASS(KControlActionEvent)
public:
    KControlActionEvent();
    KControlActionEvent(int32_t type, KThing* control);

    KEventReturn process() override;
};
