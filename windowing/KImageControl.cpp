#include "windowing/KImageControl.h"

#include "graphics/KGraphicStateGuard.h"
#include "kernel/KClass.h"
#include "kernel/KJsonWriter.h"
#include "windowing/KMouseEvent.h"
#include "windowing/KWindow.h"

namespace {

// A disabled control's picture lets this much of the white behind it through.
constexpr double kFadedTransparency = 0.65;

// Draws a picture faded for as long as it lives, then puts its own blend
// back.
class FadedDrawing {
public:
    explicit FadedDrawing(KAlphaImage& image)
        : image(image)
        , mode(image.getBlendMode())
        , transparency(image.getTransparency())
    {
        image.setBlendMode(KAlphaImage::Constant);
        image.setTransparency(kFadedTransparency);
    }
    ~FadedDrawing()
    {
        image.setBlendMode(mode);
        image.setTransparency(transparency);
    }
    FadedDrawing(const FadedDrawing&) = delete;
    FadedDrawing& operator=(const FadedDrawing&) = delete;

private:
    KAlphaImage& image;
    int32_t mode;
    double transparency;
};

KWidePoint pointOf(const KMouseEvent& event) { return KWidePoint(event.getLocal().x, event.getLocal().y); }

} // namespace

K_DEFINE_CLASS(KImageControl, KControl)

KImageControl::KImageControl() = default;

KImageControl::KImageControl(int32_t id, const KWideRectangle& bounds)
{
    setId(id);
    setPosition(bounds.getOrigin());
    setSize(bounds.getSize());
}

KImageControl::~KImageControl() = default;

void KImageControl::setPicture(KAlphaImage* image, KAlphaImage* pushedImage)
{
    picture = image;
    pushedPicture = pushedImage;
    draw();
}

bool KImageControl::contains(const KWidePoint& point) const { return !clickThrough && KControl::contains(point); }

void KImageControl::setPushed(bool value)
{
    if (pushed == value)
        return;
    pushed = value;
    draw();
}

void KImageControl::setEnabled(bool enabled)
{
    if (!enabled) {
        tracking = false;
        setPushed(false);
        // A control that cannot be pressed gives the ring up.
        if (hasFocus())
            setFocus(false);
    }
    bool before = isEnabled();
    KControl::setEnabled(enabled);
    if (before != enabled)
        draw();
}

void KImageControl::setFocus(bool on, bool byKey)
{
    bool before = hasFocus();
    KControl::setFocus(on, byKey);
    if (before != hasFocus())
        draw();
}

// --- Mouse --------------------------------------------------------------------

KEventReturn KImageControl::doMouseDown(KMouseEvent& event)
{
    if (!isEnabled() || !isVisible())
        return 0;
    KControlPtr self(this);
    pressPoint = pointOf(event);
    dragPoint = pressPoint;
    pressModifiers = event.getModifiers();
    pressButton = event.getButton();
    tracking = true;
    setPushed(true);
    sendAction(Pressed);
    // The action may have disabled or hidden the control; it keeps the
    // mouse all the same, so that the release does not fall to the window.
    return 4;
}

KEventReturn KImageControl::doMouseMoved(KMouseEvent& event)
{
    if (!tracking)
        return 0;
    KControlPtr self(this);
    dragPoint = pointOf(event);
    setPushed(getWindowBounds().contains(dragPoint));
    sendAction(Dragged);
    return 1;
}

KEventReturn KImageControl::doMouseUp(KMouseEvent& event)
{
    if (!tracking)
        return 0;
    KControlPtr self(this);
    tracking = false;
    dragPoint = pointOf(event);
    setPushed(false);
    if (isEnabled() && getWindowBounds().contains(dragPoint))
        sendAction(Released);
    return 1;
}

void KImageControl::pressByKey()
{
    if (!isEnabled() || !isVisible())
        return;
    KControlPtr self(this);
    KWideRectangle bounds = getWindowBounds();
    pressPoint = KWidePoint(bounds.x + bounds.width / 2, bounds.y + bounds.height / 2);
    dragPoint = pressPoint;
    pressModifiers = 0;
    pressButton = KMouseEvent::Left;
    tracking = true;
    sendAction(Pressed);
    tracking = false;
    if (isEnabled())
        sendAction(Released);
}

// --- Drawing --------------------------------------------------------------------

void KImageControl::paintOn(KWindow& target)
{
    KWideRectangle bounds = getWindowBounds();
    if (bounds.isEmpty())
        return;
    paintPicture(target, bounds);
    if (hasFocus())
        paintFocusRing(target, bounds);
}

void KImageControl::paintPicture(KWindow& target, const KWideRectangle& bounds)
{
    KAlphaImage* shown = pushed && pushedPicture ? pushedPicture.get() : picture.get();
    if (!shown || !shown->hasImage())
        return;
    if (isEnabled()) {
        shown->drawIn(target, bounds.toGraphic());
        return;
    }
    FadedDrawing faded(*shown);
    shown->drawIn(target, bounds.toGraphic());
}

// A ring of the highlight colour inside the control's edge, with a black
// line within it, so that it shows on light and dark pictures alike.
void KImageControl::paintFocusRing(KWindow& target, const KWideRectangle& bounds)
{
    KGraphicStateGuard state(target);
    KGraphicRectangle outer = bounds.toGraphic();
    target.setPenSize(kFocusRingWidth);
    target.frameRectangle(outer, KColor(KColor::Highlight));
    KGraphicRectangle inner(int16_t(outer.x + kFocusRingWidth), int16_t(outer.y + kFocusRingWidth),
                            int16_t(outer.width - 2 * kFocusRingWidth), int16_t(outer.height - 2 * kFocusRingWidth));
    target.setPenSize(1);
    if (!inner.isEmpty())
        target.frameRectangle(inner, KColor(KColor::Black));
}

void KImageControl::describe(KJsonWriter& out) const
{
    KControl::describe(out);
    out.member("pushed", pushed);
    out.member("focused", hasFocus());
    out.member("tooltip", getTooltip());
}
