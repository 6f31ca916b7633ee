#pragma once

#include "windowing/KWindow.h"

// A tool window that floats over the main window: it belongs to the main
// window, stays in front of the normal windows and off the task bar.
class KPaletteWindow : public KWindow {
    K_DECLARE_CLASS(KPaletteWindow)
public:
    KPaletteWindow();
    ~KPaletteWindow() override;

    void open(OpenMode mode) override;
    int32_t getTier() const override { return PaletteTier; }

protected:
    KNativeWindowSetup makeNativeSetup() const override;
};
