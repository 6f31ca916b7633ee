#include "windowing/KColourSwatchNativeControl.h"

#include "kernel/KClass.h"
#include "kernel/KJsonWriter.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KDialogHandler.h"
#include "windowing/KNativeLayer.h"

#include <cstdio>

namespace {

KNativeColour nativeColour(const KColor& colour) { return { colour.getRed(), colour.getGreen(), colour.getBlue() }; }

bool sameColour(const KColor& a, const KColor& b)
{
    return a.getRed() == b.getRed() && a.getGreen() == b.getGreen() && a.getBlue() == b.getBlue();
}

} // namespace

K_DEFINE_CLASS(KColourSwatchNativeControl, KControl)

KColourSwatchNativeControl::KColourSwatchNativeControl() = default;

KColourSwatchNativeControl::KColourSwatchNativeControl(int32_t id, const KWideRectangle& bounds, const KColor& value)
{
    setId(id);
    setPosition(bounds.getOrigin());
    setSize(bounds.getSize());
    setColour(value);
}

KColourSwatchNativeControl::~KColourSwatchNativeControl() = default;

void KColourSwatchNativeControl::setColour(const KColor& value)
{
    colour.set(value.getRed(), value.getGreen(), value.getBlue());
    if (hasNativePart())
        KNativeLayer::get().setControlColour(getNativeControl(), nativeColour(colour));
}

// The chooser goes through the dialog handler when there is one, so that
// the framework knows a native dialog is up.
KEventReturn KColourSwatchNativeControl::click()
{
    if (!isEnabled())
        return 0;
    if (!pickable)
        return sendAction(KControlActionEvent::Clicked);
    KControlPtr alive(this);
    KColor chosen(colour.getRed(), colour.getGreen(), colour.getBlue());
    bool picked = false;
    if (KDialogHandler* dialogs = KDialogHandler::current()) {
        picked = dialogs->doColorDialog(chosen);
    } else {
        KNativeColour native = nativeColour(chosen);
        picked = KNativeLayer::get().chooseColour("", native);
        chosen.set(native.red, native.green, native.blue);
    }
    if (!picked || sameColour(chosen, colour))
        return 1;
    setColour(chosen);
    return sendAction(KControlActionEvent::Changed);
}

KEventReturn KColourSwatchNativeControl::doNativeEvent(KNativeEvent& event)
{
    return notificationOf(event) == KControlNotification::Clicked ? click() : 0;
}

void KColourSwatchNativeControl::describe(KJsonWriter& out) const
{
    KControl::describe(out);
    char text[16];
    std::snprintf(text, sizeof(text), "#%04x%04x%04x", colour.getRed(), colour.getGreen(), colour.getBlue());
    out.member("value", text);
    out.member("pickable", pickable);
}

bool KColourSwatchNativeControl::describeNative(KNativeControlSetup& setup) const
{
    setup.kind = KNativeControlKind::ColourSwatch;
    setup.colour = nativeColour(colour);
    return true;
}
