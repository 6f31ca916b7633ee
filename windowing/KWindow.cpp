#include "windowing/KWindow.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "windowing/KEvent.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KWindowEvent.h"
#include "windowing/KWindowManager.h"

K_DEFINE_CLASS(KWindow, KThing)

KWindow::KWindow()
{
    frameBounds = { 0, 0, 640, 480 };
    clientBounds = frameBounds;
}

KWindow::~KWindow()
{
    if (nativeWindow) {
        if (KNativeLayer* layer = KNativeLayer::current())
            layer->closeWindow(nativeWindow);
    }
}

void KWindow::open(int32_t mode)
{
    KWindowPtr self(this);
    if (isOpen())
        knsFatalError("KWindow::open()", "Already Open.");
    void* handle = KNativeLayer::get().openWindow(*this, title.c_str(), frameBounds.width, frameBounds.height);
    if (!handle) {
        KErrorHandler::raiseError(KError::PointerNull, "void KWindow::open(OpenMode Mode)");
        return;
    }
    setNativeWindow(handle);
    stateFlags |= IsOpen;
    if (mode == Normal) {
        show(true);
        post(new KWindowEvent(KWindowEvent::Activated, this));
    } else {
        stateFlags |= HiddenAtOpen;
    }
    if (KWindowManager* manager = KWindowManager::current())
        manager->windowOpened(*this);
}

void KWindow::close()
{
    if (!isOpen())
        return;
    KWindowPtr self(this);
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
    if (makeVisible)
        stateFlags &= ~HiddenAtOpen;
}

void KWindow::hide() { show(false); }

KEventReturn KWindow::doPaint(KWindowEvent&) { return 0; }
KEventReturn KWindow::doEraseBackground(KWindowEvent&) { return 0; }
KEventReturn KWindow::doClose(KWindowEvent&) { return 2; }
KEventReturn KWindow::doActivate(KWindowEvent&) { return 0; }
KEventReturn KWindow::doDeactivate(KWindowEvent&) { return 0; }
KEventReturn KWindow::doMoved(KWindowEvent&) { return 0; }
KEventReturn KWindow::doResized(KWindowEvent&) { return 0; }

void KWindow::setTitle(const KString& text)
{
    title = text;
    if (nativeWindow)
        KNativeLayer::get().setWindowTitle(nativeWindow, title.c_str());
}

void KWindow::setFrame(const Bounds& frame)
{
    frameBounds = frame;
    clientBounds = frame;
}
