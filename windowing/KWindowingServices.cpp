#include "windowing/KWindowingServices.h"

#include "graphics/KColor.h"
#include "kernel/KLocalizerData.h"
#include "kernel/KThingPtr.h"
#include "windowing/KActionEvent.h"
#include "windowing/KApplication.h"
#include "windowing/KClipboardManager.h"
#include "windowing/KControl.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KControlsLayer.h"
#include "windowing/KCursorManager.h"
#include "windowing/KDialogHandler.h"
#include "windowing/KKeyEvent.h"
#include "windowing/KKeyboardManager.h"
#include "windowing/KLayer.h"
#include "windowing/KMailslot.h"
#include "windowing/KMenuEvent.h"
#include "windowing/KMenuManager.h"
#include "windowing/KMouseEvent.h"
#include "windowing/KNativeEvent.h"
#include "windowing/KServices.h"
#include "windowing/KWindow.h"

namespace {

// --- Managers ------------------------------------------------------------------

// The managers run() makes, held here from creation to destruction.
template<class Manager>
struct ManagerSlot {
    static KThingPtr& holder()
    {
        static KThingPtr held;
        return held;
    }
    static void create() { holder() = new Manager(); }
    static void destroy() { holder().clear(); }
    static bool exists() { return Manager::current() != nullptr; }
    static KServices::ManagerHooks hooks() { return { &create, &destroy, &exists }; }
};

template<class Slot>
void fill(Slot& slot, Slot value)
{
    if (!slot)
        slot = value;
}

void fillManager(KServices::Manager which, KServices::ManagerHooks hooks)
{
    KServices::ManagerHooks& slot = kServices().managers[which];
    if (!slot.create && !slot.destroy && !slot.exists)
        slot = hooks;
}

// --- Mouse and keys -------------------------------------------------------------------

KEventReturn routeMouse(KMouseEvent& event)
{
    KCursorManager* cursor = KCursorManager::current();
    if (!cursor)
        return event.processByApplication();
    KCursorManagerPtr held(cursor);
    switch (event.getType()) {
    case KMouseEvent::Enter:
        return cursor->doMouseEnter(event);
    case KMouseEvent::Leave:
        return cursor->doMouseLeave(event);
    case KMouseEvent::Down:
        return cursor->doMouseDown(event);
    case KMouseEvent::Moved:
        return cursor->doMouseMoved(event);
    case KMouseEvent::Other:
        return cursor->doMouseOther(event);
    case KMouseEvent::Up:
        return cursor->doMouseUp(event);
    default:
        return 0;
    }
}

KEventReturn routeKey(KKeyEvent& event)
{
    KKeyboardManager* keyboard = KKeyboardManager::current();
    if (!keyboard)
        return event.processByApplication();
    KKeyboardManagerPtr held(keyboard);
    switch (event.getType()) {
    case KKeyEvent::KeyDown:
        return keyboard->doKeyDown(event);
    case KKeyEvent::KeyUp:
        return keyboard->doKeyUp(event);
    case KKeyEvent::KeyRepeat:
        return keyboard->doKeyRepeat(event);
    default:
        return 0;
    }
}

KWindow* focusWindow()
{
    KKeyboardManager* keyboard = KKeyboardManager::current();
    KInteractiveElement* focus = keyboard ? keyboard->getFocus() : nullptr;
    return focus ? focus->getWindow() : nullptr;
}

void windowDeactivated(KWindow& window)
{
    if (KKeyboardManager* keyboard = KKeyboardManager::current())
        keyboard->windowClosed(window);
}

void updateCursor(int32_t x, int32_t y)
{
    if (KCursorManager* cursor = KCursorManager::current())
        cursor->update(KGraphicPoint(int16_t(x), int16_t(y)));
}

void showNormalCursor()
{
    if (KCursorManager* cursor = KCursorManager::current())
        cursor->setCursor(KCursorShape::Normal);
}

void releaseKeyboard()
{
    if (KKeyboardManager* keyboard = KKeyboardManager::current())
        keyboard->release();
}

bool importClipboard()
{
    KClipboardManager* clipboard = KClipboardManager::current();
    return clipboard && clipboard->importClipboard();
}

void exportClipboard()
{
    if (KClipboardManager* clipboard = KClipboardManager::current())
        clipboard->exportClipboard();
}

// --- Menus ------------------------------------------------------------------------------

KEventReturn routeMenu(KMenuEvent& event)
{
    KMenuManager* menus = KMenuManager::current();
    if (!menus)
        return 0;
    KMenuManagerPtr held(menus);
    return menus->route(event);
}

void enableMenus(bool enabled)
{
    if (KMenuManager* menus = KMenuManager::current())
        menus->enableMenus(enabled);
}

// --- Actions -----------------------------------------------------------------------------

// The element, its parents, its layer, its window, the application; the
// application's general handler sees the event first.
KEventReturn routeAction(KActionEvent& event, bool& routed)
{
    KThing* source = event.getSource();
    if (!source || !source->isEqualOrSubClass(KInteractiveElement::classRecord)) {
        routed = false;
        return 0;
    }
    KInteractiveElementPtr element(static_cast<KInteractiveElement*>(source));
    KApplication* application = KApplication::current();
    KEventReturn result = application ? application->handleEvent(event) : 0;
    if (result == 0)
        result = element->doAction(event);
    if (result == 0 && element->isEqualOrSubClass(KControl::classRecord)) {
        for (KControl* up = static_cast<KControl*>(element.get())->getParentControl(); up && result == 0;
             up = up->getParentControl())
            result = up->doAction(event);
    }
    KLayer* layer = element->getLayer();
    if (result == 0 && layer && layer != element.get())
        result = layer->doAction(event);
    if (result == 0 && element->getWindow())
        result = element->getWindow()->doAction(event);
    if (result == 0 && application)
        result = application->doAction(event);
    return result;
}

// The control, its parents, its layer and its window; the event itself
// ends with the application.
KEventReturn routeControlAction(KControlActionEvent& event)
{
    KThing* source = event.getSource();
    if (!source || !source->isEqualOrSubClass(KControl::classRecord))
        return 0;
    KControlPtr control(static_cast<KControl*>(source));
    KEventReturn result = 0;
    for (KControl* current = control.get(); current && result == 0; current = current->getParentControl())
        result = current->doControlAction(event);
    if (result == 0 && control->getLayer())
        result = control->getLayer()->doEvent(event);
    if (result == 0 && control->getWindow()) {
        KWindowPtr window(control->getWindow());
        result = window->doControlAction(event);
    }
    return result;
}

// --- Native events ----------------------------------------------------------------------

KEventReturn controlNotification(KNativeEvent& event, const KNativeRecord& record)
{
    KWindow* window = record.window;
    KControlsLayer* layer = window ? window->getControlsLayer() : nullptr;
    KControl* control = layer ? layer->findByNativeTag(record.param2) : nullptr;
    if (!control)
        return 0;
    KControlPtr held(control);
    return control->doNativeEvent(event);
}

// A window that draws its menu strip itself fills the background; the
// others are shown again from their buffer while the program is active.
KEventReturn eraseBackground(const KNativeRecord& record)
{
    KWindow* window = record.window;
    if (!window || !window->isOpen())
        return 0;
    if (window->hasWindowFlag(KWindow::MenuStrip)) {
        const KGraphicRectangle& client = window->getClientBounds();
        window->fillRectangle(KGraphicRectangle(0, 0, client.width, client.height), window->getBackground());
        return 1;
    }
    KApplication* application = KApplication::current();
    if (application && application->hasAppFlags(KApplication::Active))
        window->invalidate();
    return 1;
}

} // namespace

KEventReturn kksHandleWindowNativeEvent(KNativeEvent& event)
{
    const KNativeRecord* record = event.getNativeRecord();
    if (!record)
        return 0;
    KEventReturn result = 0;
    switch (record->message) {
    case KNativeMessage::Command:
    case KNativeMessage::Notify:
    case KNativeMessage::HorizontalScroll:
    case KNativeMessage::VerticalScroll:
        result = controlNotification(event, *record);
        break;
    case KNativeMessage::EraseBackground:
        result = eraseBackground(*record);
        break;
    default:
        break;
    }
    if (result == 0) {
        if (auto menus = kServices().menuNativeEvent)
            result = menus(event);
    }
    return result;
}

void kInstallWindowingServices()
{
    KServices& services = kServices();
    fillManager(KServices::Menus, ManagerSlot<KMenuManager>::hooks());
    fillManager(KServices::Clipboard, ManagerSlot<KClipboardManager>::hooks());
    fillManager(KServices::Cursor, ManagerSlot<KCursorManager>::hooks());
    fillManager(KServices::Keyboard, ManagerSlot<KKeyboardManager>::hooks());
    fillManager(KServices::Dialogs, ManagerSlot<KDialogHandler>::hooks());
    fill(services.createLocalizer, &kCreateBaseLocalizer);
    fill(services.destroyLocalizer, &kDestroyBaseLocalizer);
    fill(services.translate, &kBaseTranslate);
    fill(services.importClipboard, &importClipboard);
    fill(services.exportClipboard, &exportClipboard);
    fill(services.releaseKeyboard, &releaseKeyboard);
    fill(services.showNormalCursor, &showNormalCursor);
    fill(services.updateCursor, &updateCursor);
    fill(services.pollMessages, &kPollMailslot);
    fill(services.routeMouse, &routeMouse);
    fill(services.routeKey, &routeKey);
    fill(services.routeMenu, &routeMenu);
    fill(services.enableMenus, &enableMenus);
    fill(services.routeAction, &routeAction);
    fill(services.routeControlAction, &routeControlAction);
    fill(services.focusWindow, &focusWindow);
    fill(services.windowDeactivated, &windowDeactivated);
    fill(services.nativeEvent, &kksHandleWindowNativeEvent);
}
