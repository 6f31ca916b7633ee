#pragma once

#include "windowing/KEvent.h"

// A native message that only the native side handles; it carries nothing
// but the message's copy.
class KNativeEvent : public KEvent {
    K_DECLARE_CLASS(KNativeEvent)
public:
    KNativeEvent();
    explicit KNativeEvent(const KNativeRecord& record);

    KEventReturn process() override;
};

// Handles the native-only messages. A result of 1 stops the native default
// processing.
KEventReturn kksProcessNativeEvent(KEvent& event);
