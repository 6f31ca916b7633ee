#pragma once

#include "windowing/KWindow.h"

// The program's main window.
class StylusWindow : public KWindow {
    K_DECLARE_CLASS(StylusWindow)
public:
    static constexpr int32_t kDefaultWidth = 800;
    static constexpr int32_t kDefaultHeight = 600;

    StylusWindow();
    ~StylusWindow() override;
};
