#pragma once

#include "kernel/KThingPtr.h"
#include "windowing/KMenu.h"

class KSubMenu;

// "View": how large the tool palette is drawn, and the scanning that moves
// its ring by itself for a child who uses a single switch. The choices are
// kept in the settings, so the palette comes back as the child needs it.
class ViewMenu : public KMenu {
    K_DECLARE_CLASS(ViewMenu)
public:
    enum Item : int32_t {
        NormalPalette = 0,
        LargePalette = 1,
        LargestPalette = 2,
        ScanPalette = 3,
        // The scanning intervals' sub-menu holds FirstInterval and on.
        FirstInterval = 10,
    };
    static constexpr int32_t kScanIntervals[] = { 500, 1000, 1500, 2000, 3000, 5000 };

    ViewMenu();
    ~ViewMenu() override;
    KEventReturn doOpen(KMenuEvent& event) override;
    KEventReturn doMenuItem(KMenuEvent& event) override;

private:
    KPtr<KSubMenu> intervals;
};
