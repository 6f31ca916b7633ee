#pragma once

#include "windowing/KWindow.h"

// The program's main window. It shows the page, a black surface of the
// document's size.
class StylusWindow : public KWindow {
    K_DECLARE_CLASS(StylusWindow)
public:
    // The default document size.
    static constexpr int32_t kDefaultWidth = 640;
    static constexpr int32_t kDefaultHeight = 480;

    StylusWindow();
    ~StylusWindow() override;

    static StylusWindow* current();
};
