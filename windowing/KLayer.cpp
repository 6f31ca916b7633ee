#include "windowing/KLayer.h"

#include "kernel/KClass.h"
#include "windowing/KWindow.h"

K_DEFINE_CLASS(KLayer, KInteractiveElement)

KLayer::KLayer() { setElementFlag(Visible, true); }

KLayer::~KLayer() = default;

void KLayer::setWindow(KWindow* window)
{
    KInteractiveElement::setWindow(window);
    setLayer(this);
}

void KLayer::resetWindow()
{
    KInteractiveElement::resetWindow();
    resetLayer();
}

void KLayer::createNativeParts() { }
void KLayer::removeNativeParts() { }
KEventReturn KLayer::doEvent(KEvent&) { return 0; }
KEventReturn KLayer::doClose() { return 0; }

KWideRectangle KLayer::getBounds() const
{
    KWideRectangle own = KInteractiveElement::getBounds();
    if (!own.isEmpty() || !getWindow())
        return own;
    const KGraphicRectangle& client = getWindow()->getClientBounds();
    return KWideRectangle(0, 0, client.width, client.height);
}

KEventReturn KLayer::doMouseEnter(KMouseEvent&) { return 0; }
KEventReturn KLayer::doMouseLeave(KMouseEvent&) { return 0; }
KEventReturn KLayer::doMouseDown(KMouseEvent&) { return 0; }
KEventReturn KLayer::doMouseMoved(KMouseEvent&) { return 0; }
KEventReturn KLayer::doMouseOther(KMouseEvent&) { return 0; }
KEventReturn KLayer::doMouseUp(KMouseEvent&) { return 0; }
KEventReturn KLayer::doPaint(KWindowEvent&) { return 0; }
