#pragma once

#include "windowing/KPaletteWindow.h"

// The strip of tools that floats over the main window, at the bottom of
// the screen. Its background is white.
class ToolPalette : public KPaletteWindow {
    K_DECLARE_CLASS(ToolPalette)
public:
    static constexpr int32_t kWidth = 640;
    // The height of the short form.
    static constexpr int32_t kShortHeight = 67;

    ToolPalette();
    ~ToolPalette() override;

    static ToolPalette* current();

    KEventReturn doPaint(KWindowEvent& event) override;
};
