#pragma once

#include "windowing/KMenu.h"

// "Animate": play from the start or from the position, stop, and the
// animation's setup.
class AnimMenu : public KMenu {
    K_DECLARE_CLASS(AnimMenu)
public:
    enum Item : int32_t { Play = 0, PlayFromPosition = 1, Stop = 2, AnimationSetup = 3 };

    AnimMenu();
    KEventReturn doOpen(KMenuEvent& event) override;
    KEventReturn doMenuItem(KMenuEvent& event) override;
};
