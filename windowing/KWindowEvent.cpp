#include "windowing/KWindowEvent.h"

#include "kernel/KClass.h"
#include "windowing/KApplication.h"
#include "windowing/KApplicationEvent.h"
#include "windowing/KServices.h"
#include "windowing/KWindow.h"
#include "windowing/KWindowManager.h"

K_DEFINE_CLASS(KWindowEvent, KEvent)

KWindowEvent::KWindowEvent() = default;

KWindowEvent::KWindowEvent(int32_t eventType, KWindow* eventWindow)
    : KEvent(eventType)
    , window(eventWindow)
{
}

KEventReturn KWindowEvent::process()
{
    if (isNativeModalUp())
        return 1;
    if (!window || !KApplication::current())
        return 0;
    switch (getType()) {
    case Paint:
        return paint();
    case EraseBackground:
        return eraseBackground();
    case Moved:
        return moved();
    case Resized:
        return resized();
    case CloseRequest:
        return closeRequest();
    case Activated:
        return activated();
    case Deactivated:
        return deactivated();
    default:
        return 0;
    }
}

KEventReturn KWindowEvent::paint()
{
    KWindowPtr held = window;
    KEventReturn result = held->paint(*this);
    return result != 0 ? result : KApplication::current()->doWindowPaint(*this);
}

KEventReturn KWindowEvent::eraseBackground()
{
    KEventReturn result = window->doEraseBackground(*this);
    return result != 0 ? result : KApplication::current()->doWindowPaint(*this);
}

// A move carries the client area's new position, a resize its new size.
void KWindowEvent::updateBounds()
{
    const KNativeRecord* record = getNativeRecord();
    if (!record)
        return;
    KGraphicRectangle bounds = window->getClientBounds();
    if (getType() == Moved) {
        bounds.x = int16_t(record->param1);
        bounds.y = int16_t(record->param2);
    } else {
        bounds.width = int16_t(record->param1);
        bounds.height = int16_t(record->param2);
    }
    window->setClientBounds(bounds);
}

KEventReturn KWindowEvent::moved()
{
    updateBounds();
    KEventReturn result = window->doMoved(*this);
    return result != 0 ? result : KApplication::current()->doWindowMoved(*this);
}

KEventReturn KWindowEvent::resized()
{
    updateBounds();
    KEventReturn result = window->doResized(*this);
    return result != 0 ? result : KApplication::current()->doWindowResized(*this);
}

// The main window's close is a quit request: the application agrees (2) or
// refuses. Any other window closes when it agrees itself.
KEventReturn KWindowEvent::closeRequest()
{
    KWindowPtr held = window;
    KEventReturn answer = held->doClose(*this);
    if (answer != 2)
        return answer;
    KApplication* application = KApplication::current();
    if (held.get() != application->getMainWindow()) {
        held->close();
        return answer;
    }
    KApplicationEventPtr quit(new KApplicationEvent(KApplicationEvent::QuitRequest));
    quit->setTime(getTime());
    answer = application->doQuit(*quit);
    if (answer == 2) {
        held->close();
        application->postQuit();
    }
    return answer;
}

KEventReturn KWindowEvent::activated()
{
    KApplication* application = KApplication::current();
    KEventReturn result = window->doActivate(*this);
    if (result == 0)
        result = application->doWindowActivated(*this);
    // The desktop raised the window; the palettes go back in front of it.
    if (KWindowManager* manager = KWindowManager::current()) {
        manager->setActive(*window);
        manager->restackAbove(*window);
    }
    if (auto told = kServices().windowActivated)
        told(*window);
    return result;
}

KEventReturn KWindowEvent::deactivated()
{
    KApplication* application = KApplication::current();
    if (auto told = kServices().windowDeactivated)
        told(*window);
    if (KWindowManager* manager = KWindowManager::current()) {
        if (manager->getActiveWindow() == window.get())
            manager->clearActive();
    }
    KEventReturn result = window->doDeactivate(*this);
    KEventReturn fromApplication = application->doWindowDeactivated(*this);
    return result != 0 ? result : fromApplication;
}
