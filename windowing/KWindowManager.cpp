#include "windowing/KWindowManager.h"

#include "kernel/KClass.h"
#include "windowing/KWindow.h"

#include <algorithm>

namespace {

KWindowManager* gWindowManager = nullptr;

} // namespace

K_DEFINE_CLASS(KWindowManager, KThing)

KWindowManager::KWindowManager() { gWindowManager = this; }

KWindowManager::~KWindowManager()
{
    if (gWindowManager == this)
        gWindowManager = nullptr;
}

KWindowManager* KWindowManager::current() { return gWindowManager; }

void KWindowManager::setActive(KWindow& window) { activeWindow = window; }

void KWindowManager::clearActive() { activeWindow.clear(); }

void KWindowManager::windowOpened(KWindow& window)
{
    if (!isKnown(&window))
        windows.emplace_back(&window);
    setActive(window);
    reorderWindows();
}

void KWindowManager::windowClosed(KWindow& window)
{
    KWindowPtr held(window);
    auto it = std::find(windows.begin(), windows.end(), KWindowPtr(window));
    if (it != windows.end())
        windows.erase(it);
    reorderWindows();
    if (activeWindow == &window)
        clearActive();
}

void KWindowManager::reorderWindows() { }

void KWindowManager::closeAll()
{
    std::vector<KWindowPtr> open = windows;
    for (auto it = open.rbegin(); it != open.rend(); ++it)
        (*it)->close();
}

KWindow* KWindowManager::getActiveWindow() const { return activeWindow.get(); }

KWindow* KWindowManager::getFrontWindow() const { return windows.empty() ? nullptr : windows.back().get(); }

bool KWindowManager::isKnown(const KWindow* window) const
{
    for (auto& held : windows) {
        if (held.get() == window)
            return true;
    }
    return false;
}
