#include "windowing/KWindowManager.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "windowing/KCursorManager.h"
#include "windowing/KKeyboardManager.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KServices.h"
#include "windowing/KWindow.h"

#include <algorithm>

namespace {

KWindowManager* gWindowManager = nullptr;

// The pointer may have come to lie over another window.
void refreshCursorTarget()
{
    KCursorManager* cursor = KCursorManager::current();
    KNativeLayer* layer = KNativeLayer::current();
    int32_t x = 0;
    int32_t y = 0;
    if (cursor && layer && layer->cursorPosition(x, y))
        cursor->refresh(KGraphicPoint(int16_t(x), int16_t(y)));
}

} // namespace

K_DEFINE_CLASS(KWindowManager, KThing)

KWindowManager::KWindowManager() { gWindowManager = this; }

KWindowManager::~KWindowManager()
{
    if (gWindowManager == this)
        gWindowManager = nullptr;
}

KWindowManager* KWindowManager::current() { return gWindowManager; }

int32_t KWindowManager::indexOf(const KWindow* window) const
{
    for (size_t index = 0; index < windows.size(); ++index) {
        if (windows[index].get() == window)
            return static_cast<int32_t>(index);
    }
    return -1;
}

bool KWindowManager::isKnown(const KWindow* window) const { return indexOf(window) >= 0; }

void KWindowManager::setActive(KWindow& window)
{
    activeWindow = window;
    int32_t index = indexOf(&window);
    if (index >= 0 && index + 1 < windowCount()) {
        KWindowPtr held = windows[size_t(index)];
        windows.erase(windows.begin() + index);
        windows.push_back(held);
        reorderWindows();
    }
}

void KWindowManager::clearActive() { activeWindow.clear(); }

void KWindowManager::windowOpened(KWindow& window)
{
    KWindowPtr held(window);
    if (window.isModal() && ++modalCount == 1)
        enableMenus(false);
    if (!isKnown(&window))
        windows.emplace_back(&window);
    setActive(window);
    if (window.isModal())
        updateEnabling();
    reorderWindows();
}

void KWindowManager::beginModal(KWindow& dialog)
{
    if (!isKnown(&dialog))
        return;
    if (++modalCount == 1)
        enableMenus(false);
    setActive(dialog);
    updateEnabling();
    reorderWindows();
}

void KWindowManager::windowClosed(KWindow& window)
{
    KWindowPtr held(window);
    int32_t index = indexOf(&window);
    if (index >= 0)
        windows.erase(windows.begin() + index);
    updateEnabling();
    reorderWindows();
    if (activeWindow == &window)
        clearActive();
    if (KCursorManager* cursor = KCursorManager::current())
        cursor->windowClosed(window);
    if (KKeyboardManager* keyboard = KKeyboardManager::current())
        keyboard->windowClosed(window);
    if (index >= 0 && window.isModal() && modalCount > 0 && --modalCount == 0)
        enableMenus(true);
    refreshCursorTarget();
}

void KWindowManager::updateEnabling()
{
    bool behindModal = false;
    for (auto it = windows.rbegin(); it != windows.rend(); ++it) {
        (*it)->setEnabled(!behindModal);
        if ((*it)->isModal())
            behindModal = true;
    }
}

void KWindowManager::enableMenus(bool enabled)
{
    if (auto hook = kServices().enableMenus)
        hook(enabled);
}

std::vector<void*> KWindowManager::sortByTiers()
{
    std::stable_sort(windows.begin(), windows.end(),
                     [](const KWindowPtr& a, const KWindowPtr& b) { return a->getTier() < b->getTier(); });
    std::vector<void*> order;
    for (auto& window : windows) {
        if (window->getNativeWindow())
            order.push_back(window->getNativeWindow());
    }
    return order;
}

void KWindowManager::reorderWindows()
{
    std::vector<void*> order = sortByTiers();
    if (order == nativeOrder)
        return;
    nativeOrder = order;
    if (order.size() > 1)
        KNativeLayer::get().restackWindows(order);
}

void KWindowManager::restack()
{
    nativeOrder.clear();
    reorderWindows();
}

// Only the windows that belong above the activated one are raised again:
// raising the activated window or those below it would, without a window
// manager, move the keyboard focus to whatever then lies under the pointer,
// which activates that window, and the two would chase each other.
void KWindowManager::restackAbove(KWindow& activated)
{
    std::vector<void*> order = sortByTiers();
    nativeOrder = order;
    auto at = std::find(order.begin(), order.end(), activated.getNativeWindow());
    if (at == order.end())
        return;
    std::vector<void*> above(at + 1, order.end());
    if (!above.empty())
        KNativeLayer::get().restackWindows(above);
}

void KWindowManager::closeAll()
{
    std::vector<KWindowPtr> open = windows;
    for (auto it = open.rbegin(); it != open.rend(); ++it)
        (*it)->close();
}

KWindow* KWindowManager::getActiveWindow() const { return activeWindow.get(); }

KWindow* KWindowManager::frontWindow() const { return windows.empty() ? nullptr : windows.back().get(); }

KWindow* KWindowManager::getFrontWindow() const
{
    KWindow* window = frontWindow();
    if (!window)
        KErrorHandler::raiseError(KError::NoWindow);
    return window;
}

KWindow* KWindowManager::getFrontWindow(int32_t tier) const
{
    for (auto it = windows.rbegin(); it != windows.rend(); ++it) {
        if ((*it)->getTier() == tier)
            return it->get();
    }
    KErrorHandler::raiseError(KError::NoWindow);
    return nullptr;
}

KWindow* KWindowManager::getWindowBelow(KWindow& window) const
{
    int32_t index = indexOf(&window);
    if (index > 0)
        return windows[size_t(index - 1)].get();
    KErrorHandler::raiseError(KError::NoWindow);
    return nullptr;
}

KWindow* KWindowManager::getWindowAbove(KWindow& window) const
{
    int32_t index = indexOf(&window);
    if (index >= 0 && index + 1 < windowCount())
        return windows[size_t(index) + 1].get();
    KErrorHandler::raiseError(KError::NoWindow);
    return nullptr;
}

KWindow* KWindowManager::getWindowAt(const KGraphicPoint& point) const
{
    for (auto it = windows.rbegin(); it != windows.rend(); ++it) {
        KWindow* window = it->get();
        if (window->isVisible() && window->getClientBounds().contains(point))
            return window;
    }
    return nullptr;
}
