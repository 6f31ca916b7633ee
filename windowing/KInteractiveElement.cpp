#include "windowing/KInteractiveElement.h"

#include "kernel/KClass.h"
#include "windowing/KWindow.h"

namespace {

int32_t gLiveElements = 0;

} // namespace

K_DEFINE_CLASS(KInteractiveElement, KThing)

KInteractiveElement::KInteractiveElement()
    : features(8)
{
    for (int32_t feature = 1; feature <= 4; ++feature)
        features.add(feature);
    ++gLiveElements;
}

KInteractiveElement::~KInteractiveElement() { --gLiveElements; }

int32_t KInteractiveElement::liveElements() { return gLiveElements; }

void KInteractiveElement::setLayer(KLayer* value) { layer = value; }

void KInteractiveElement::resetLayer() { layer = nullptr; }

void KInteractiveElement::setWindow(KWindow* value) { window = value; }

void KInteractiveElement::resetWindow() { window = nullptr; }

void KInteractiveElement::setId(int32_t value)
{
    if (value == id)
        return;
    id = value;
    if (hasElementFlag(RedrawOnIdChange))
        draw();
}

void KInteractiveElement::setName(const KString& value) { name = value; }

void KInteractiveElement::setPosition(const KWidePoint& point) { position = point; }

void KInteractiveElement::setSize(const KWideSize& value) { size = value; }

void KInteractiveElement::setElementFlag(int32_t flag, bool on)
{
    if (on)
        elementFlags |= flag;
    else
        elementFlags &= ~flag;
}

void KInteractiveElement::setEnabled(bool enabled)
{
    if (enabled == isEnabled())
        return;
    if (enabled)
        features.add(kEnabledFeature);
    else
        features.remove(kEnabledFeature);
    draw();
}

void KInteractiveElement::setVisible(bool visible)
{
    if (visible == isVisible() || !window)
        return;
    if (!visible) {
        hide();
        return;
    }
    setElementFlag(Visible, true);
    if (hasElementFlag(DrawWhenShown))
        draw();
}

void KInteractiveElement::show() { setVisible(true); }

// What was shown has to be shown again without the element.
void KInteractiveElement::hide()
{
    if (!isVisible())
        return;
    draw();
    setElementFlag(Visible, false);
}

bool KInteractiveElement::contains(const KWidePoint& point) const { return getBounds().contains(point); }

KEventReturn KInteractiveElement::doAction(KActionEvent&) { return 0; }
KEventReturn KInteractiveElement::doKeyDown(KKeyEvent&) { return 0; }
KEventReturn KInteractiveElement::doKeyUp(KKeyEvent&) { return 0; }
KEventReturn KInteractiveElement::doKeyRepeat(KKeyEvent&) { return 0; }
bool KInteractiveElement::doIdleTest() { return false; }

void KInteractiveElement::setFocus(bool on, bool byKey)
{
    if (!on) {
        if (hasFocus())
            doFocusChange(FocusLost);
        return;
    }
    setElementFlag(InFocusChain, true);
    if (!isEnabled() || !window || !isVisible())
        return;
    if (byKey) {
        if (!hasElementFlag(SkipOnTab) && hasElementFlag(FocusByKey))
            doFocusChange(FocusByKeyboard);
    } else if (hasElementFlag(FocusByMouse)) {
        doFocusChange(FocusByMouseClick);
    }
}

void KInteractiveElement::doFocusChange(int32_t change)
{
    setElementFlag(HasFocus, change != FocusLost);
    draw();
}

void KInteractiveElement::draw()
{
    if (window)
        window->invalidate(getBounds());
}

void KInteractiveElement::drawNow()
{
    if (window && isVisible())
        paintOn(*window);
}

void KInteractiveElement::doUpdate() { draw(); }

KWideRectangle KInteractiveElement::getBounds() const
{
    return KWideRectangle(position.x, position.y, size.width, size.height);
}

void KInteractiveElement::paintOn(KWindow&) { }
