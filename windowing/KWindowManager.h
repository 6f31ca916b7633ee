#pragma once

#include "kernel/KThingPtr.h"
#include "windowing/KWindowingForward.h"

#include <vector>

// Keeps the open windows in stacking order (the last is in front) and knows
// which one is active. A new instance replaces the previous one.
class KWindowManager : public KThing {
    K_DECLARE_CLASS(KWindowManager)
public:
    KWindowManager();
    ~KWindowManager() override;

    static KWindowManager* current();

    virtual void setActive(KWindow& window);
    virtual void clearActive();
    virtual void windowOpened(KWindow& window);
    virtual void windowClosed(KWindow& window);
    virtual void reorderWindows();
    // Closes every window, front to back.
    virtual void closeAll();

    KWindow* getActiveWindow() const;
    KWindow* getFrontWindow() const;
    bool isKnown(const KWindow* window) const;
    int32_t windowCount() const { return static_cast<int32_t>(windows.size()); }

private:
    std::vector<KWindowPtr> windows;
    int32_t modalCount = 0;
    KWindowPtr activeWindow;
};
