#include "windowing/KCheckBoxNativeControl.h"

#include "kernel/KClass.h"
#include "kernel/KJsonWriter.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KNativeLayer.h"

K_DEFINE_CLASS(KCheckBoxNativeControl, KControl)

KCheckBoxNativeControl::KCheckBoxNativeControl() = default;

KCheckBoxNativeControl::KCheckBoxNativeControl(int32_t id, const KString& text, const KWideRectangle& bounds,
                                               bool isChecked)
    : checked(isChecked)
{
    setId(id);
    setText(text);
    setPosition(bounds.getOrigin());
    setSize(bounds.getSize());
}

KCheckBoxNativeControl::~KCheckBoxNativeControl() = default;

void KCheckBoxNativeControl::setChecked(bool value)
{
    checked = value;
    if (hasNativePart())
        KNativeLayer::get().setControlValue(getNativeControl(), checked ? 1 : 0);
}

KEventReturn KCheckBoxNativeControl::doNativeEvent(KNativeEvent& event)
{
    double value = 0;
    if (notificationOf(event) != KControlNotification::Changed
        || !KNativeLayer::get().controlValue(getNativeControl(), value))
        return 0;
    bool now = value != 0;
    if (now == checked)
        return 1;
    checked = now;
    return sendAction(KControlActionEvent::Changed);
}

void KCheckBoxNativeControl::describe(KJsonWriter& out) const
{
    KControl::describe(out);
    out.member("value", checked);
}

bool KCheckBoxNativeControl::describeNative(KNativeControlSetup& setup) const
{
    setup.kind = KNativeControlKind::CheckBox;
    setup.value = checked ? 1 : 0;
    return true;
}
