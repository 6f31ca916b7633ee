#pragma once

#include "kernel/KThing.h"
#include "kernel/KThingPtr.h"
#include "windowing/KTimer.h"

// For a player that runs unattended ("--quit-at-end"): a wait for the
// user's click or key is answered by itself after `kWaitMilliseconds`, so
// the story plays through to its end without anyone at the keyboard.
class PlayerWaitAnswer : public KThing {
public:
    static constexpr int32_t kWaitMilliseconds = 2000;
    static constexpr int32_t kCheckMilliseconds = 100;

    PlayerWaitAnswer();
    ~PlayerWaitAnswer() override;

    void start();
    void timerFired(KTimer& timer) override;

private:
    KPtr<KTimer> timer;
    int32_t waitingIndex = -1;
    int32_t waited = 0;
};
