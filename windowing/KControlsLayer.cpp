#include "windowing/KControlsLayer.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "windowing/KApplication.h"
#include "windowing/KControl.h"
#include "windowing/KMouseEvent.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KWindow.h"

namespace {

KControl* findInTree(KControl& control, int32_t id)
{
    if (control.getId() == id)
        return &control;
    for (auto& child : control.getChildren()) {
        if (KControl* found = findInTree(*child, id))
            return found;
    }
    return nullptr;
}

bool isWithin(const KControl* control, const KControl& top)
{
    for (const KControl* up = control; up; up = up->getParentControl()) {
        if (up == &top)
            return true;
    }
    return false;
}

} // namespace

K_DEFINE_CLASS(KControlsLayer, KLayer)

KControlsLayer::KControlsLayer() = default;

KControlsLayer::~KControlsLayer()
{
    for (auto& control : controls) {
        control->resetWindow();
        control->resetLayer();
    }
}

// --- Finding controls -------------------------------------------------------------

KControl* KControlsLayer::findControl(const KGraphicPoint& point) const
{
    KWidePoint p(point.x, point.y);
    for (auto it = controls.rbegin(); it != controls.rend(); ++it) {
        KControl* control = it->get();
        if (!control->isVisible() || !control->isEnabled() || !control->contains(p))
            continue;
        KWidePoint inner(p.x - control->getPosition().x, p.y - control->getPosition().y);
        KControl* deeper = control->findChild(inner);
        return deeper ? deeper : control;
    }
    return nullptr;
}

KControl* KControlsLayer::getControl(const KGraphicPoint& point) const
{
    KControl* control = findControl(point);
    if (!control)
        KErrorHandler::raiseError(KError::PointerNull);
    return control;
}

KControl* KControlsLayer::getControl(int32_t id) const
{
    for (auto& control : controls) {
        if (KControl* found = findInTree(*control, id))
            return found;
    }
    return nullptr;
}

bool KControlsLayer::hasControl(const KControl& control) const
{
    for (auto& held : controls) {
        if (held.get() == &control)
            return true;
    }
    return false;
}

KControl* KControlsLayer::findByNativeTag(int32_t tag) const
{
    for (auto& control : controls) {
        if (KControl* found = control->findByNativeTag(tag))
            return found;
    }
    return nullptr;
}

bool KControlsLayer::contains(const KWidePoint& point) const
{
    return findControl(KGraphicPoint(int16_t(point.x), int16_t(point.y))) != nullptr;
}

// --- Membership --------------------------------------------------------------------

void KControlsLayer::addControl(KControl& control)
{
    if (hasControl(control))
        return;
    controls.emplace_back(&control);
    control.setLayer(this);
    control.setElementFlag(Visible, true);
    if (KWindow* window = getWindow()) {
        control.setWindow(window);
        control.createNativePart();
        control.draw();
    }
}

void KControlsLayer::removeControl(KControl& control)
{
    for (auto it = controls.begin(); it != controls.end(); ++it) {
        if (it->get() != &control)
            continue;
        KControlPtr held = *it;
        if (isWithin(hover.get(), control))
            clearHover();
        if (isWithin(pressed.get(), control))
            clearPressed();
        control.draw();
        control.resetWindow();
        control.resetLayer();
        controls.erase(it);
        return;
    }
}

void KControlsLayer::setWindow(KWindow* window)
{
    KLayer::setWindow(window);
    for (auto& control : controls) {
        control->setWindow(window);
        control->setLayer(this);
    }
}

void KControlsLayer::resetWindow()
{
    hover.clear();
    pressed.clear();
    for (auto& control : controls)
        control->resetWindow();
    KLayer::resetWindow();
}

void KControlsLayer::createNativeParts()
{
    for (auto& control : controls)
        control->createNativePart();
}

// The window is closing: its hover and press end without events.
void KControlsLayer::removeNativeParts()
{
    if (tooltipShown && getWindow() && getWindow()->getNativeWindow())
        KNativeLayer::get().setWindowTooltip(getWindow()->getNativeWindow(), nullptr);
    tooltipShown = false;
    hover.clear();
    pressed.clear();
    for (auto& control : controls)
        control->removeNativePart();
}

// --- Hover and press -----------------------------------------------------------------

void KControlsLayer::sendHoverEvent(int32_t type, KControl& control)
{
    KWindow* window = getWindow();
    if (!window)
        return;
    auto* event = new KMouseEvent(type, window);
    event->setLayer(this);
    event->setElement(&control);
    processNow(event);
}

void KControlsLayer::setHover(KControl* control)
{
    if (control == hover.get())
        return;
    clearHover();
    if (!control)
        return;
    hover = control;
    sendHoverEvent(KMouseEvent::Enter, *control);
    KApplication* application = KApplication::current();
    KWindow* window = getWindow();
    if (application && application->hasAppFlags(KApplication::ToolTips) && !control->getTooltip().isEmpty() && window
        && window->getNativeWindow()) {
        KNativeLayer::get().setWindowTooltip(window->getNativeWindow(), control->getTooltip().c_str());
        tooltipShown = true;
    }
}

void KControlsLayer::clearHover()
{
    if (!hover)
        return;
    KControlPtr old = hover;
    sendHoverEvent(KMouseEvent::Leave, *old);
    hover.clear();
    if (tooltipShown && getWindow() && getWindow()->getNativeWindow())
        KNativeLayer::get().setWindowTooltip(getWindow()->getNativeWindow(), nullptr);
    tooltipShown = false;
}

void KControlsLayer::setPressed(KControl& control) { pressed = control; }

void KControlsLayer::clearPressed() { pressed.clear(); }

void KControlsLayer::updateHover(const KGraphicPoint& point) { setHover(findControl(point)); }

bool KControlsLayer::isOwnControl(const KInteractiveElement* element) const
{
    if (!element || !element->isEqualOrSubClass(KControl::classRecord))
        return false;
    const auto* control = static_cast<const KControl*>(element);
    for (auto& held : controls) {
        if (isWithin(control, *held))
            return true;
    }
    return false;
}

KEventReturn KControlsLayer::offerUpwards(KControl* control, KMouseEvent& event, MouseHandler handler,
                                          KControl** answered)
{
    KControlPtr held(control);
    for (KControl* current = control; current; current = current->getParentControl()) {
        KEventReturn result = (current->*handler)(event);
        if (result != 0) {
            if (answered)
                *answered = current;
            return result;
        }
    }
    return 0;
}

// --- Mouse -----------------------------------------------------------------------------

KEventReturn KControlsLayer::doMouseEnter(KMouseEvent& event)
{
    KInteractiveElement* element = event.getElement();
    return isOwnControl(element) ? static_cast<KControl*>(element)->doMouseEnter(event) : 0;
}

KEventReturn KControlsLayer::doMouseLeave(KMouseEvent& event)
{
    KInteractiveElement* element = event.getElement();
    return isOwnControl(element) ? static_cast<KControl*>(element)->doMouseLeave(event) : 0;
}

KEventReturn KControlsLayer::doMouseDown(KMouseEvent& event)
{
    updateHover(KGraphicPoint(int16_t(event.getLocal().x), int16_t(event.getLocal().y)));
    if (!hover)
        return 0;
    KControlPtr target = hover;
    event.setElement(&target->getTopLevel());
    KControl* answered = nullptr;
    KEventReturn result = offerUpwards(target.get(), event, &KControl::doMouseDown, &answered);
    if (result == 4 && answered)
        setPressed(*answered);
    return result;
}

KEventReturn KControlsLayer::doMouseMoved(KMouseEvent& event)
{
    updateHover(KGraphicPoint(int16_t(event.getLocal().x), int16_t(event.getLocal().y)));
    KControl* target = pressed ? pressed.get() : hover.get();
    return target ? offerUpwards(target, event, &KControl::doMouseMoved) : 0;
}

KEventReturn KControlsLayer::doMouseOther(KMouseEvent& event)
{
    updateHover(KGraphicPoint(int16_t(event.getLocal().x), int16_t(event.getLocal().y)));
    KControl* target = pressed ? pressed.get() : hover.get();
    return target ? offerUpwards(target, event, &KControl::doMouseOther) : 0;
}

KEventReturn KControlsLayer::doMouseUp(KMouseEvent& event)
{
    KGraphicPoint point(int16_t(event.getLocal().x), int16_t(event.getLocal().y));
    if (!pressed) {
        updateHover(point);
        return hover ? offerUpwards(hover.get(), event, &KControl::doMouseUp) : 0;
    }
    KControlPtr released = pressed;
    KEventReturn result = offerUpwards(released.get(), event, &KControl::doMouseUp);
    clearPressed();
    updateHover(point);
    return result;
}

KEventReturn KControlsLayer::doPaint(KWindowEvent&)
{
    if (KWindow* window = getWindow()) {
        std::vector<KControlPtr> held = controls;
        for (auto& control : held)
            control->paint(*window);
    }
    return 0;
}

KControl* KControlsLayer::getHover() const { return hover.get(); }

KControl* KControlsLayer::getPressed() const { return pressed.get(); }
