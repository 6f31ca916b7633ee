#include "windowing/KCursorManager.h"

#include "kernel/KClass.h"
#include "windowing/KApplication.h"
#include "windowing/KLayer.h"
#include "windowing/KMouseEvent.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KTimer.h"
#include "windowing/KWindow.h"
#include "windowing/KWindowManager.h"

#include <cstdlib>

namespace {

KCursorManager* gCursorManager = nullptr;

// The presses seen so far, kept across events and managers.
struct ClickHistory {
    bool seen = false;
    uint32_t lastTime = 0;
    uint32_t previousTime = 0;
    KEventPoint lastPoint;
    KEventPoint previousPoint;
    bool lastWasDouble = false;
};

ClickHistory& history()
{
    static ClickHistory h;
    return h;
}

KGraphicPoint toPoint(const KEventPoint& p) { return { int16_t(p.x), int16_t(p.y) }; }

} // namespace

K_DEFINE_CLASS(KCursorManager, KThing)

KCursorManager::KCursorManager() { gCursorManager = this; }

KCursorManager::~KCursorManager()
{
    if (animationTimer)
        animationTimer->stop();
    if (gCursorManager == this)
        gCursorManager = nullptr;
}

KCursorManager* KCursorManager::current() { return gCursorManager; }

void KCursorManager::resetClickHistory() { history() = ClickHistory(); }

KEventReturn KCursorManager::toApplication(KMouseEvent& event, ApplicationHandler handler)
{
    KApplication* application = KApplication::current();
    return application ? (application->*handler)(event) : 0;
}

// --- Presses --------------------------------------------------------------------

// A press close in time and space to the one before is a double click,
// unless that one was itself the second of a double click: a third click
// starts over.
void KCursorManager::noteDown(KMouseEvent& event)
{
    ClickHistory& h = history();
    bool hadPrevious = h.seen;
    h.previousTime = h.lastTime;
    h.previousPoint = h.lastPoint;
    h.lastTime = event.getTime();
    h.lastPoint = event.getGlobal();
    h.seen = true;

    KNativeLayer* layer = KNativeLayer::current();
    int32_t doubleTime = layer ? layer->doubleClickTime() : 500;
    int32_t distance = layer ? layer->doubleClickDistance() : 4;
    int32_t elapsed = kTimeDifference(h.lastTime, h.previousTime);
    bool nearInTime = hadPrevious && elapsed >= 0 && elapsed < doubleTime;
    bool nearInSpace = hadPrevious && std::abs(h.lastPoint.x - h.previousPoint.x) < distance
                       && std::abs(h.lastPoint.y - h.previousPoint.y) < distance;
    int32_t flags = event.getClickFlags() & ~(KMouseEvent::DoubleClick | KMouseEvent::SamePosition);
    if (nearInSpace)
        flags |= KMouseEvent::SamePosition;
    bool isDouble = nearInSpace && nearInTime && !h.lastWasDouble;
    if (isDouble)
        flags |= KMouseEvent::DoubleClick;
    event.setClickFlags(flags);
    h.lastWasDouble = isDouble;
}

KEventReturn KCursorManager::doMouseDown(KMouseEvent& event)
{
    noteDown(event);
    KWindowPtr window(event.getWindow());
    if (!window->isEnabled())
        return 1;
    // The list may change under the handlers; they get the layers of the
    // moment of the press.
    std::vector<KLayerPtr> layers = window->getLayers();
    KEventReturn result = 0;
    for (auto it = layers.rbegin(); it != layers.rend() && result == 0; ++it) {
        result = (*it)->doMouseDown(event);
        if (result == 4)
            captureLayer(**it);
    }
    if (result == 0) {
        result = window->doMouseDown(event);
        if (result == 4)
            captureWindow(*window);
    }
    if (result == 0)
        result = toApplication(event, &KApplication::doMouseDown);
    return result;
}

// --- Moves ------------------------------------------------------------------------

KEventReturn KCursorManager::routeMove(KMouseEvent& event, const Route& route)
{
    KWindowPtr window(event.getWindow());
    if (!window->isEnabled() && !capturedLayer && !capturedWindow)
        return 1;
    KEventReturn result = 0;
    if (capturedLayer) {
        KLayerPtr layer = capturedLayer;
        result = ((*layer).*route.layer)(event);
        KWindow* owner = layer->getWindow() ? layer->getWindow() : window.get();
        if (result == 0)
            result = (owner->*route.window)(event);
    } else if (capturedWindow) {
        KWindowPtr captured = capturedWindow;
        result = ((*captured).*route.window)(event);
    } else {
        KLayerPtr layer(window->getLayer(toPoint(event.getLocal())));
        if (layer)
            result = ((*layer).*route.layer)(event);
        if (result == 0)
            result = ((*window).*route.window)(event);
    }
    if (result == 0)
        result = toApplication(event, route.application);
    return result;
}

KEventReturn KCursorManager::doMouseMoved(KMouseEvent& event)
{
    static const Route route { &KLayer::doMouseMoved, &KWindow::doMouseMoved, &KApplication::doMouseMoved };
    return routeMove(event, route);
}

KEventReturn KCursorManager::doMouseOther(KMouseEvent& event)
{
    static const Route route { &KLayer::doMouseOther, &KWindow::doMouseOther, &KApplication::doMouseOther };
    return routeMove(event, route);
}

// A capture ends with the release, wherever the pointer is by then; the
// hover target is found anew.
KEventReturn KCursorManager::doMouseUp(KMouseEvent& event)
{
    KWindowPtr window(event.getWindow());
    if (capturedLayer) {
        KLayerPtr layer = capturedLayer;
        KEventReturn result = layer->doMouseUp(event);
        releaseCapture();
        if (result == 0)
            result = (layer->getWindow() ? layer->getWindow() : window.get())->doMouseUp(event);
        refresh(toPoint(event.getGlobal()));
        return result;
    }
    if (capturedWindow) {
        KWindowPtr captured = capturedWindow;
        KEventReturn result = captured->doMouseUp(event);
        releaseCapture();
        refresh(toPoint(event.getGlobal()));
        return result;
    }
    if (!window->isEnabled())
        return 1;
    KEventReturn result = 0;
    KLayerPtr layer(window->getLayer(toPoint(event.getLocal())));
    if (layer)
        result = layer->doMouseUp(event);
    if (result == 0)
        result = window->doMouseUp(event);
    if (result == 0)
        result = toApplication(event, &KApplication::doMouseUp);
    return result;
}

// --- Enter and leave ----------------------------------------------------------------

KEventReturn KCursorManager::routeCrossing(KMouseEvent& event, const Route& route)
{
    KEventReturn result = 0;
    KLayerPtr layer(event.getLayer());
    if (layer)
        result = ((*layer).*route.layer)(event);
    if (result == 0 && event.getWindow())
        result = (event.getWindow()->*route.window)(event);
    if (result == 0)
        result = toApplication(event, route.application);
    return result;
}

KEventReturn KCursorManager::doMouseEnter(KMouseEvent& event)
{
    static const Route route { &KLayer::doMouseEnter, &KWindow::doMouseEnter, &KApplication::doMouseEnter };
    return routeCrossing(event, route);
}

KEventReturn KCursorManager::doMouseLeave(KMouseEvent& event)
{
    static const Route route { &KLayer::doMouseLeave, &KWindow::doMouseLeave, &KApplication::doMouseLeave };
    return routeCrossing(event, route);
}

void KCursorManager::update(const KGraphicPoint& point)
{
    if (positionKnown && point == lastPosition)
        return;
    refresh(point);
}

void KCursorManager::refresh(const KGraphicPoint& point)
{
    lastPosition = point;
    positionKnown = true;
    KWindow* window = nullptr;
    KLayer* layer = nullptr;
    if (capturedLayer) {
        KWindow* owner = capturedLayer->getWindow();
        if (owner && owner->getClientBounds().contains(point)) {
            window = owner;
            KGraphicPoint local = owner->globalToLocal(point);
            if (capturedLayer->contains(KWidePoint(local.x, local.y)))
                layer = capturedLayer.get();
        }
    } else if (capturedWindow) {
        if (capturedWindow->getClientBounds().contains(point))
            window = capturedWindow.get();
    } else if (KWindowManager* manager = KWindowManager::current()) {
        window = manager->getWindowAt(point);
        if (window)
            layer = window->getLayer(window->globalToLocal(point));
    }
    if (window == hoverWindow.get() && layer == hoverLayer.get())
        return;
    KWindowPtr oldWindow = hoverWindow;
    KLayerPtr oldLayer = hoverLayer;
    hoverWindow = window;
    hoverLayer = layer;
    if (oldWindow && oldWindow->isOpen())
        sendCrossing(KMouseEvent::Leave, *oldWindow, oldLayer.get(), point);
    if (window)
        sendCrossing(KMouseEvent::Enter, *window, layer, point);
}

void KCursorManager::sendCrossing(int32_t type, KWindow& window, KLayer* layer, const KGraphicPoint& point)
{
    auto* event = new KMouseEvent(type, &window);
    event->setLayer(layer);
    event->setGlobal({ point.x, point.y });
    KGraphicPoint local = window.globalToLocal(point);
    event->setLocal({ local.x, local.y });
    event->setTime(knsGetTime());
    processNow(event);
}

// --- Capture -------------------------------------------------------------------------

void KCursorManager::captureLayer(KLayer& layer)
{
    capturedWindow.clear();
    capturedLayer = layer;
}

void KCursorManager::captureWindow(KWindow& window)
{
    capturedLayer.clear();
    capturedWindow = window;
}

void KCursorManager::releaseCapture()
{
    capturedLayer.clear();
    capturedWindow.clear();
}

KWindow* KCursorManager::getCaptureWindow() const
{
    if (capturedWindow)
        return capturedWindow.get();
    return capturedLayer ? capturedLayer->getWindow() : nullptr;
}

void KCursorManager::windowClosed(KWindow& window)
{
    if (getCaptureWindow() == &window)
        releaseCapture();
    if (hoverWindow.get() == &window) {
        hoverWindow.clear();
        hoverLayer.clear();
    }
}

// --- Shape -------------------------------------------------------------------------------

void KCursorManager::setCursor(KCursorShape id)
{
    if (animationTimer) {
        animationTimer->stop();
        animationTimer.clear();
    }
    cursorId = id;
    if (KNativeLayer* layer = KNativeLayer::current())
        layer->setCursorShape(id);
}

void KCursorManager::beginWait()
{
    if (waitDepth++ == 0) {
        cursorBeforeWait = cursorId;
        setCursor(KCursorShape::Wait);
    }
}

void KCursorManager::endWait()
{
    if (waitDepth == 0)
        return;
    if (--waitDepth == 0)
        setCursor(cursorBeforeWait);
}

void KCursorManager::hideCursor()
{
    if (hideCount++ == 0) {
        if (KNativeLayer* layer = KNativeLayer::current())
            layer->setCursorVisible(false);
    }
}

void KCursorManager::showCursor()
{
    if (hideCount == 0)
        return;
    if (--hideCount == 0) {
        if (KNativeLayer* layer = KNativeLayer::current())
            layer->setCursorVisible(true);
    }
}

KLayer* KCursorManager::getCaptureLayer() const { return capturedLayer.get(); }

KWindow* KCursorManager::getHoverWindow() const { return hoverWindow.get(); }

KLayer* KCursorManager::getHoverLayer() const { return hoverLayer.get(); }
