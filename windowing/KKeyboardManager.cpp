#include "windowing/KKeyboardManager.h"

#include "kernel/KClass.h"
#include "windowing/KApplication.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KControl.h"
#include "windowing/KControlsLayer.h"
#include "windowing/KDialog.h"
#include "windowing/KKeyEvent.h"
#include "windowing/KWindow.h"
#include "windowing/KWindowManager.h"

namespace {

KKeyboardManager* gKeyboardManager = nullptr;

bool takesKeyFocus(const KControl& control)
{
    return control.isVisible() && control.isEnabled() && control.hasElementFlag(KInteractiveElement::FocusByKey)
           && !control.hasElementFlag(KInteractiveElement::SkipOnTab);
}

} // namespace

K_DEFINE_CLASS(KKeyboardManager, KThing)

KKeyboardManager::KKeyboardManager() { gKeyboardManager = this; }

KKeyboardManager::~KKeyboardManager()
{
    if (gKeyboardManager == this)
        gKeyboardManager = nullptr;
}

KKeyboardManager* KKeyboardManager::current() { return gKeyboardManager; }

bool KKeyboardManager::addHandler(KThing& handler)
{
    for (auto& held : handlers) {
        if (held.get() == &handler)
            return false;
    }
    handlers.emplace_back(&handler);
    return true;
}

bool KKeyboardManager::removeHandler(KThing& handler)
{
    for (auto it = handlers.begin(); it != handlers.end(); ++it) {
        if (it->get() == &handler) {
            handlers.erase(it);
            return true;
        }
    }
    return false;
}

KEventReturn KKeyboardManager::offerToHandlers(KKeyEvent& event)
{
    std::vector<KThingPtr> current = handlers;
    for (auto& handler : current) {
        KEventReturn result = handler.get()->handleEvent(event);
        if (result != 0)
            return result;
    }
    return 0;
}

// The focus element's window; else the window the key was typed in, which
// is the one the desktop gave the focus; else the active or front window.
KWindow* KKeyboardManager::targetWindow(KKeyEvent& event) const
{
    if (focus && focus->getWindow())
        return focus->getWindow();
    if (event.getWindow() && event.getWindow()->isOpen())
        return event.getWindow();
    KWindowManager* manager = KWindowManager::current();
    if (!manager)
        return nullptr;
    return manager->getActiveWindow() ? manager->getActiveWindow() : manager->frontWindow();
}

KEventReturn KKeyboardManager::dialogKey(KWindow& window, KKeyEvent& event)
{
    if (!window.isEqualOrSubClass(KDialog::classRecord))
        return 0;
    auto& dialog = static_cast<KDialog&>(window);
    KButtonNativeControl* button = nullptr;
    if (event.getKeyCode() == KKeyEvent::Return)
        button = dialog.getDefaultButton();
    else if (event.getKeyCode() == KKeyEvent::Escape)
        button = dialog.getCancelButton();
    if (!button)
        return 0;
    KControlPtr held(button);
    KEventReturn result = button->click();
    return result != 0 ? result : 1;
}

KEventReturn KKeyboardManager::doKeyDown(KKeyEvent& event)
{
    KEventReturn result = offerToHandlers(event);
    if (result != 0)
        return result;
    if (focus) {
        KInteractiveElementPtr element = focus;
        result = element->doKeyDown(event);
        if (result != 0)
            return result;
    }
    KWindowPtr target(targetWindow(event));
    if (target && event.getKeyCode() == KKeyEvent::Tab && moveFocus(*target, (event.getModifiers() & 1) != 0))
        return 1;
    if (target) {
        result = dialogKey(*target, event);
        if (result == 0)
            result = target->doKeyDown(event);
    }
    if (result == 0 && KApplication::current())
        result = KApplication::current()->doKeyDown(event);
    return result;
}

KEventReturn KKeyboardManager::routeOther(KKeyEvent& event, ElementHandler elementHandler, WindowHandler windowHandler)
{
    KEventReturn result = offerToHandlers(event);
    if (result == 0 && focus) {
        KInteractiveElementPtr element = focus;
        result = ((*element).*elementHandler)(event);
    }
    if (result == 0) {
        KWindowPtr target(targetWindow(event));
        if (target)
            result = ((*target).*windowHandler)(event);
    }
    return result;
}

KEventReturn KKeyboardManager::doKeyUp(KKeyEvent& event)
{
    KEventReturn result = routeOther(event, &KInteractiveElement::doKeyUp, &KWindow::doKeyUp);
    if (result == 0 && KApplication::current())
        result = KApplication::current()->doKeyUp(event);
    return result;
}

KEventReturn KKeyboardManager::doKeyRepeat(KKeyEvent& event)
{
    KEventReturn result = routeOther(event, &KInteractiveElement::doKeyRepeat, &KWindow::doKeyRepeat);
    if (result == 0 && KApplication::current())
        result = KApplication::current()->doKeyRepeat(event);
    return result;
}

// --- Focus -------------------------------------------------------------------------

void KKeyboardManager::setFocus(KInteractiveElement& element, bool byKey)
{
    if (focus.get() == &element)
        return;
    KInteractiveElementPtr old = focus;
    focus = element;
    if (old)
        old->setFocus(false);
    element.setFocus(true, byKey);
}

void KKeyboardManager::clearFocus()
{
    KInteractiveElementPtr old = focus;
    focus.clear();
    if (old)
        old->setFocus(false);
}

bool KKeyboardManager::moveFocus(KWindow& window, bool backwards)
{
    KControlsLayer* layer = window.getControlsLayer();
    if (!layer)
        return false;
    std::vector<KControl*> candidates;
    int32_t current = -1;
    for (auto& control : layer->getControls()) {
        if (!takesKeyFocus(*control))
            continue;
        if (control.get() == focus.get())
            current = static_cast<int32_t>(candidates.size());
        candidates.push_back(control.get());
    }
    auto count = static_cast<int32_t>(candidates.size());
    if (count == 0)
        return false;
    int32_t next = 0;
    if (backwards)
        next = current <= 0 ? count - 1 : current - 1;
    else
        next = current < 0 ? 0 : (current + 1) % count;
    setFocus(*candidates[size_t(next)], true);
    return true;
}

void KKeyboardManager::windowClosed(KWindow& window)
{
    if (focus && focus->getWindow() == &window)
        clearFocus();
}

void KKeyboardManager::release()
{
    clearFocus();
    handlers.clear();
}

KInteractiveElement* KKeyboardManager::getFocus() const { return focus.get(); }
