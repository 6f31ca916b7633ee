#include "windowing/KWindow.h"

#include "graphics/native/KNativeDevice.h"
#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "windowing/KControlsLayer.h"
#include "windowing/KEvent.h"
#include "windowing/KLayer.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KWindowEvent.h"
#include "windowing/KWindowManager.h"

#include <algorithm>
#include <cstring>

namespace {

// Paints of a window do not ask for themselves to be shown again: the
// native side shows the buffer once the paint is done.
class PaintingGuard {
public:
    explicit PaintingGuard(bool& flag)
        : flag(flag)
        , saved(flag)
    {
        flag = true;
    }
    ~PaintingGuard() { flag = saved; }
    PaintingGuard(const PaintingGuard&) = delete;
    PaintingGuard& operator=(const PaintingGuard&) = delete;

private:
    bool& flag;
    bool saved;
};

KNativeRect nativeRect(const KGraphicRectangle& r) { return { r.x, r.y, r.width, r.height }; }

} // namespace

K_DEFINE_CLASS(KWindow, KGraphicDevice)

KWindow::KWindow()
    : KGraphicDevice(kDeviceOwner)
    , frameBounds(0, 0, 640, 480)
    , clientBounds(frameBounds)
{
}

KWindow::~KWindow()
{
    for (auto& layer : layers)
        layer->resetWindow();
    if (nativeWindow) {
        if (KNativeLayer* layer = KNativeLayer::current())
            layer->closeWindow(nativeWindow);
    }
}

KGraphicSize KWindow::getMinimumSize() const { return { 1, 1 }; }

KGraphicSize KWindow::getMaximumSize() const { return { 32767, 32767 }; }

KGraphicRectangle KWindow::getFrame() const { return frameBounds; }

KNativeWindowSetup KWindow::makeNativeSetup() const
{
    KNativeWindowSetup setup;
    setup.kind = KNativeWindowKind::Normal;
    setup.title = title.c_str();
    setup.client = nativeRect(frameBounds);
    setup.closable = hasWindowFlag(Closable);
    setup.resizable = hasWindowFlag(Resizable);
    return setup;
}

void KWindow::open(OpenMode mode)
{
    if (isOpen())
        KErrorHandler::fatal("Already Open.");
    openWith(mode, makeNativeSetup());
}

void KWindow::openWith(OpenMode mode, const KNativeWindowSetup& setup, const KSourceLocation& where)
{
    KWindowPtr self(this);
    void* handle = KNativeLayer::get().openWindow(*this, setup);
    if (!handle) {
        KErrorHandler::raiseError(KError::PointerNull, where);
        return;
    }
    clientBounds = frameBounds;
    setNativeWindow(handle);
    attachBackBuffer();
    if (!hasNativeDevice())
        KErrorHandler::fatal("HDC==NULL");
    for (auto& layer : layers)
        layer->createNativeParts();
    if (!isEnabled())
        KNativeLayer::get().setWindowEnabled(handle, false);
    if (mode == Normal) {
        show(true);
        post(new KWindowEvent(KWindowEvent::Activated, this));
    } else {
        stateFlags |= HiddenAtOpen;
    }
    stateFlags |= IsOpen;
    if (KWindowManager* manager = KWindowManager::current())
        manager->windowOpened(*this);
}

void KWindow::close()
{
    if (!isOpen())
        return;
    KWindowPtr self(this);
    std::vector<KLayerPtr> held = layers;
    for (auto& layer : held)
        layer->removeNativeParts();
    detachNativeDevice();
    stateFlags &= ~(IsOpen | HiddenAtOpen);
    if (KWindowManager* manager = KWindowManager::current())
        manager->windowClosed(*this);
    void* handle = nativeWindow;
    setNativeWindow(nullptr);
    visible = false;
    if (handle)
        KNativeLayer::get().closeWindow(handle);
}

void KWindow::show(bool makeVisible)
{
    if (!nativeWindow)
        return;
    KNativeLayer::get().showWindow(nativeWindow, makeVisible);
    visible = makeVisible;
    if (!makeVisible)
        return;
    stateFlags &= ~HiddenAtOpen;
    KWindowManager* manager = KWindowManager::current();
    if (manager && manager->isKnown(this))
        manager->restack();
}

void KWindow::hide() { show(false); }

KEventReturn KWindow::paint(KWindowEvent& event)
{
    KWindowPtr self(this);
    PaintingGuard guard(painting);
    KEventReturn result = doPaint(event);
    std::vector<KLayerPtr> held = layers;
    for (auto& layer : held) {
        if (layer->isVisible() && layer->doPaint(event) != 0)
            break;
    }
    return result;
}

KEventReturn KWindow::doPaint(KWindowEvent&) { return 0; }
KEventReturn KWindow::doEraseBackground(KWindowEvent&) { return 0; }
KEventReturn KWindow::doClose(KWindowEvent&) { return 2; }
KEventReturn KWindow::doActivate(KWindowEvent&) { return 0; }
KEventReturn KWindow::doDeactivate(KWindowEvent&) { return 0; }
KEventReturn KWindow::doAction(KActionEvent&) { return 0; }
KEventReturn KWindow::doControlAction(KControlActionEvent&) { return 0; }
KEventReturn KWindow::doKeyDown(KKeyEvent&) { return 0; }
KEventReturn KWindow::doKeyUp(KKeyEvent&) { return 0; }
KEventReturn KWindow::doKeyRepeat(KKeyEvent&) { return 0; }
KEventReturn KWindow::doMouseEnter(KMouseEvent&) { return 0; }
KEventReturn KWindow::doMouseLeave(KMouseEvent&) { return 0; }
KEventReturn KWindow::doMouseDown(KMouseEvent&) { return 0; }
KEventReturn KWindow::doMouseMoved(KMouseEvent&) { return 0; }
KEventReturn KWindow::doMouseOther(KMouseEvent&) { return 0; }
KEventReturn KWindow::doMouseUp(KMouseEvent&) { return 0; }
KEventReturn KWindow::doMoved(KWindowEvent&) { return 0; }
KEventReturn KWindow::doResized(KWindowEvent&) { return 0; }

void KWindow::setEnabled(bool enabled)
{
    if (enabled == isEnabled())
        return;
    if (enabled)
        windowFlags &= ~InputOff;
    else
        windowFlags |= InputOff;
    if (nativeWindow)
        KNativeLayer::get().setWindowEnabled(nativeWindow, enabled);
}

void KWindow::setTitle(const KString& text)
{
    title = text;
    if (nativeWindow)
        KNativeLayer::get().setWindowTitle(nativeWindow, title.c_str());
}

void KWindow::setBounds(const KGraphicRectangle& frame)
{
    frameBounds = frame;
    if (!nativeWindow) {
        clientBounds = frame;
        return;
    }
    KNativeLayer::get().setWindowBounds(nativeWindow, nativeRect(frame));
    setClientBounds(frame);
}

void KWindow::setClientBounds(const KGraphicRectangle& client)
{
    bool resized = client.width != clientBounds.width || client.height != clientBounds.height;
    clientBounds = client;
    frameBounds = client;
    if (resized && hasNativeDevice())
        resizeBackBuffer(client.width, client.height);
}

// --- Back buffer -------------------------------------------------------------

void KWindow::attachBackBuffer()
{
    int32_t width = std::max<int32_t>(clientBounds.width, 1);
    int32_t height = std::max<int32_t>(clientBounds.height, 1);
    attachNativeDevice(KNativeDevice::createImage(width, height));
}

// The part that both sizes share keeps its pixels; new parts are black.
void KWindow::resizeBackBuffer(int32_t width, int32_t height)
{
    KNativeDevice* fresh = KNativeDevice::createImage(std::max(width, 1), std::max(height, 1));
    if (!fresh)
        return;
    KPixelBuffer from;
    KPixelBuffer to;
    KNativeDevice* old = getNativeDevice();
    if (old && old->beginPixels(from) && fresh->beginPixels(to)) {
        int32_t rows = std::min(from.height, to.height);
        int32_t columns = std::min(from.width, to.width);
        for (int32_t y = 0; y < rows; ++y)
            std::memcpy(to.row(y), from.row(y), size_t(columns) * sizeof(uint32_t));
        fresh->endPixels(KWideRectangle(0, 0, columns, rows));
    }
    attachNativeDevice(fresh);
    invalidate();
}

void KWindow::surfaceChanged(const KWideRectangle& changed)
{
    if (!painting)
        invalidate(changed);
}

void KWindow::invalidate() { invalidate(KWideRectangle(0, 0, clientBounds.width, clientBounds.height)); }

void KWindow::invalidate(const KWideRectangle& area)
{
    if (!nativeWindow || area.isEmpty())
        return;
    KNativeLayer::get().invalidateWindow(nativeWindow, { area.x, area.y, area.width, area.height });
}

// --- Layers and controls ------------------------------------------------------

void KWindow::addLayer(KLayer& layer)
{
    for (auto& held : layers) {
        if (held.get() == &layer)
            return;
    }
    layers.emplace_back(&layer);
    layer.setWindow(this);
    if (nativeWindow)
        layer.createNativeParts();
}

void KWindow::removeLayer(KLayer& layer)
{
    for (auto it = layers.begin(); it != layers.end(); ++it) {
        if (it->get() != &layer)
            continue;
        KLayerPtr held = *it;
        layers.erase(it);
        if (nativeWindow)
            layer.removeNativeParts();
        layer.resetWindow();
        if (controls.get() == &layer)
            controls.clear();
        return;
    }
}

KLayer* KWindow::getLayer(const KGraphicPoint& point) const
{
    KWidePoint p(point.x, point.y);
    for (auto it = layers.rbegin(); it != layers.rend(); ++it) {
        if ((*it)->isVisible() && (*it)->contains(p))
            return it->get();
    }
    return nullptr;
}

KControlsLayer& KWindow::controlsLayer()
{
    if (!controls) {
        controls = new KControlsLayer();
        addLayer(*controls);
    }
    return *controls;
}

KControlsLayer* KWindow::getControlsLayer() const { return controls.get(); }

void KWindow::addControl(KControl& control) { controlsLayer().addControl(control); }

void KWindow::removeControl(KControl& control)
{
    if (controls)
        controls->removeControl(control);
}

KGraphicPoint KWindow::globalToLocal(const KGraphicPoint& point) const
{
    return { int16_t(point.x - clientBounds.x), int16_t(point.y - clientBounds.y) };
}

KGraphicPoint KWindow::localToGlobal(const KGraphicPoint& point) const
{
    return { int16_t(point.x + clientBounds.x), int16_t(point.y + clientBounds.y) };
}
