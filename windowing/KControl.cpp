#include "windowing/KControl.h"

#include "kernel/KClass.h"
#include "kernel/KJsonWriter.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KNativeEvent.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KWindow.h"

namespace {

int32_t gNextNativeTag = 1;

int32_t nextTag()
{
    int32_t tag = gNextNativeTag++;
    if (gNextNativeTag <= 0)
        gNextNativeTag = 1;
    return tag;
}

KNativeRect nativeRect(const KWideRectangle& r) { return { r.x, r.y, r.width, r.height }; }

} // namespace

K_DEFINE_CLASS(KControl, KInteractiveElement)

KControl::KControl()
    : nativeTag(nextTag())
{
}

KControl::~KControl()
{
    for (auto& child : children)
        child->parent = nullptr;
    if (nativeControl) {
        if (KNativeLayer* layer = KNativeLayer::current())
            layer->destroyControl(nativeControl);
    }
}

void KControl::setWindow(KWindow* window)
{
    KInteractiveElement::setWindow(window);
    for (auto& child : children)
        child->setWindow(window);
}

void KControl::resetWindow()
{
    removeNativePart();
    KInteractiveElement::resetWindow();
    for (auto& child : children)
        child->resetWindow();
}

void KControl::setLayer(KLayer* layer)
{
    KInteractiveElement::setLayer(layer);
    for (auto& child : children)
        child->setLayer(layer);
}

void KControl::resetLayer()
{
    KInteractiveElement::resetLayer();
    for (auto& child : children)
        child->resetLayer();
}

void KControl::setPosition(const KWidePoint& point)
{
    draw();
    KInteractiveElement::setPosition(point);
    placeNative();
    draw();
}

void KControl::setSize(const KWideSize& value)
{
    draw();
    KInteractiveElement::setSize(value);
    placeNative();
    draw();
}

void KControl::setEnabled(bool enabled)
{
    KInteractiveElement::setEnabled(enabled);
    if (nativeControl)
        KNativeLayer::get().setControlEnabled(nativeControl, enabled);
}

void KControl::setVisible(bool visible)
{
    KInteractiveElement::setVisible(visible);
    if (nativeControl && visible)
        KNativeLayer::get().setControlVisible(nativeControl, true);
}

void KControl::hide()
{
    KInteractiveElement::hide();
    if (nativeControl)
        KNativeLayer::get().setControlVisible(nativeControl, false);
}

void KControl::setText(const KString& value)
{
    text = value;
    if (nativeControl)
        KNativeLayer::get().setControlText(nativeControl, text.c_str());
    draw();
}

const char* KControl::getKindName() const { return "control"; }

void KControl::describe(KJsonWriter& out) const
{
    out.member("kind", getKindName());
    out.member("id", getId());
    out.member("text", text);
    KWideRectangle bounds = getWindowBounds();
    out.key("bounds");
    out.beginObject();
    out.member("x", bounds.x);
    out.member("y", bounds.y);
    out.member("width", bounds.width);
    out.member("height", bounds.height);
    out.endObject();
    out.member("enabled", isEnabled());
    out.member("visible", isVisible());
}

int32_t KControl::notificationOf(const KNativeEvent& event)
{
    const KNativeRecord* record = event.getNativeRecord();
    return record ? record->param1 : -1;
}

KEventReturn KControl::sendAction(int32_t type) { return processNow(new KControlActionEvent(type, this)); }

// --- Tree ----------------------------------------------------------------------

void KControl::addChild(KControl& child)
{
    for (auto& held : children) {
        if (held.get() == &child)
            return;
    }
    children.emplace_back(&child);
    child.parent = this;
    child.setElementFlag(Visible, true);
    if (getLayer())
        child.setLayer(getLayer());
    if (getWindow()) {
        child.setWindow(getWindow());
        child.createNativePart();
    }
}

void KControl::removeChild(KControl& child)
{
    for (auto it = children.begin(); it != children.end(); ++it) {
        if (it->get() != &child)
            continue;
        KControlPtr held = *it;
        children.erase(it);
        child.resetWindow();
        child.resetLayer();
        child.parent = nullptr;
        return;
    }
}

KControl& KControl::getTopLevel()
{
    KControl* control = this;
    while (control->parent)
        control = control->parent;
    return *control;
}

KWideRectangle KControl::getWindowBounds() const
{
    KWideRectangle bounds = getBounds();
    for (KControl* up = parent; up; up = up->parent) {
        bounds.x += up->getPosition().x;
        bounds.y += up->getPosition().y;
    }
    return bounds;
}

KControl* KControl::findChild(const KWidePoint& point) const
{
    for (auto it = children.rbegin(); it != children.rend(); ++it) {
        KControl* child = it->get();
        if (!child->isVisible() || !child->isEnabled() || !child->contains(point))
            continue;
        KWidePoint inner(point.x - child->getPosition().x, point.y - child->getPosition().y);
        KControl* deeper = child->findChild(inner);
        return deeper ? deeper : child;
    }
    return nullptr;
}

KControl* KControl::findByNativeTag(int32_t tag)
{
    if (nativeTag == tag)
        return this;
    for (auto& child : children) {
        if (KControl* found = child->findByNativeTag(tag))
            return found;
    }
    return nullptr;
}

// --- Events --------------------------------------------------------------------

KEventReturn KControl::doMouseEnter(KMouseEvent&) { return 0; }
KEventReturn KControl::doMouseLeave(KMouseEvent&) { return 0; }
KEventReturn KControl::doMouseDown(KMouseEvent&) { return 0; }
KEventReturn KControl::doMouseMoved(KMouseEvent&) { return 0; }
KEventReturn KControl::doMouseOther(KMouseEvent&) { return 0; }
KEventReturn KControl::doMouseUp(KMouseEvent&) { return 0; }
KEventReturn KControl::doControlAction(KControlActionEvent&) { return 0; }
KEventReturn KControl::doNativeEvent(KNativeEvent&) { return 0; }

void KControl::paint(KWindow& target)
{
    if (!isVisible())
        return;
    paintOn(target);
    for (auto& child : children)
        child->paint(target);
}

void KControl::draw()
{
    if (getWindow() && !nativeControl)
        getWindow()->invalidate(getWindowBounds());
}

// --- Native part ------------------------------------------------------------------

bool KControl::describeNative(KNativeControlSetup&) const { return false; }

void KControl::createNativePart()
{
    KWindow* window = getWindow();
    if (!nativeControl && window && window->getNativeWindow()) {
        KNativeControlSetup setup;
        setup.tag = nativeTag;
        setup.text = text.c_str();
        setup.bounds = nativeRect(getWindowBounds());
        if (describeNative(setup)) {
            nativeControl = KNativeLayer::get().createControl(window->getNativeWindow(), setup);
            if (nativeControl) {
                KNativeLayer::get().setControlEnabled(nativeControl, isEnabled());
                KNativeLayer::get().setControlVisible(nativeControl, isVisible());
            }
        }
    }
    for (auto& child : children)
        child->createNativePart();
}

void KControl::removeNativePart()
{
    for (auto& child : children)
        child->removeNativePart();
    if (!nativeControl)
        return;
    void* handle = nativeControl;
    nativeControl = nullptr;
    if (KNativeLayer* layer = KNativeLayer::current())
        layer->destroyControl(handle);
}

void KControl::placeNative()
{
    if (nativeControl)
        KNativeLayer::get().setControlBounds(nativeControl, nativeRect(getWindowBounds()));
    for (auto& child : children)
        child->placeNative();
}
