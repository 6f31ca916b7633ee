#pragma once

#include "graphics/KGraphicPoint.h"
#include "kernel/KThingPtr.h"
#include "windowing/KWindowingForward.h"

#include <vector>

// Keeps the open windows in stacking order (the last is in front) and knows
// which one is active. Palettes stay in front of the normal windows and
// modal dialogs in front of the palettes; while a modal dialog is up, the
// windows behind it are disabled and so are the menus. A new instance
// replaces the previous one.
class KWindowManager : public KThing {
    K_DECLARE_CLASS(KWindowManager)
public:
    KWindowManager();
    ~KWindowManager() override;

    static KWindowManager* current();

    // Makes the window the active one and brings it to the front of its
    // tier.
    virtual void setActive(KWindow& window);
    virtual void clearActive();
    virtual void windowOpened(KWindow& window);
    virtual void windowClosed(KWindow& window);

    // The front window; the error when there is none.
    KWindow* getFrontWindow() const;
    // The front window of a tier (KWindow::Tier); the error when none.
    KWindow* getFrontWindow(int32_t tier) const;
    KWindow* getWindowBelow(KWindow& window) const;
    KWindow* getWindowAbove(KWindow& window) const;
    // Sorts the list by tiers, keeping the order within each, and has the
    // native side stack the windows so.
    virtual void reorderWindows();
    // Closes every window, front to back.
    virtual void closeAll();
    // Has the native side stack the windows again, as after a window
    // appeared: the desktop puts a newly shown window in front.
    void restack();
    // The desktop raised and activated the window: the windows that stand
    // above it (palettes, dialogs) go back in front of it.
    void restackAbove(KWindow& activated);

    // A dialog began to run modally: it counts, the windows behind it are
    // disabled, and the first one turns the menus off.
    void beginModal(KWindow& dialog);
    int32_t getModalCount() const { return modalCount; }

    // The front window, or null; no error.
    KWindow* frontWindow() const;
    KWindow* getActiveWindow() const;
    // The frontmost visible window whose client area holds the point
    // (screen terms), or null.
    KWindow* getWindowAt(const KGraphicPoint& point) const;
    bool isKnown(const KWindow* window) const;
    int32_t windowCount() const { return static_cast<int32_t>(windows.size()); }
    const std::vector<KWindowPtr>& getWindows() const { return windows; }

private:
    int32_t indexOf(const KWindow* window) const;
    // Front to back: the first modal window and those in front of it are
    // enabled, all behind it disabled; without a modal, all are enabled.
    void updateEnabling();
    void enableMenus(bool enabled);

    std::vector<KWindowPtr> windows;
    int32_t modalCount = 0;
    KWindowPtr activeWindow;
    // The order last given to the native side.
    // The windows sorted by tiers, and their native handles in that order.
    std::vector<void*> sortByTiers();

    std::vector<void*> nativeOrder;
};
