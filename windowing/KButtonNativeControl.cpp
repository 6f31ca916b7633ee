#include "windowing/KButtonNativeControl.h"

#include "kernel/KClass.h"
#include "kernel/KJsonWriter.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KNativeEvent.h"

K_DEFINE_CLASS(KButtonNativeControl, KControl)

KButtonNativeControl::KButtonNativeControl() = default;

KButtonNativeControl::KButtonNativeControl(int32_t id, const KString& text, const KWideRectangle& bounds)
{
    setId(id);
    setText(text);
    setPosition(bounds.getOrigin());
    setSize(bounds.getSize());
}

KButtonNativeControl::~KButtonNativeControl() = default;

KEventReturn KButtonNativeControl::click()
{
    if (!isEnabled())
        return 0;
    return processNow(new KControlActionEvent(Clicked, this));
}

KEventReturn KButtonNativeControl::doNativeEvent(KNativeEvent& event)
{
    const KNativeRecord* record = event.getNativeRecord();
    if (record && record->param1 == KControlNotification::Clicked)
        return click();
    return 0;
}

bool KButtonNativeControl::describeNative(KNativeControlSetup& setup) const
{
    setup.kind = KNativeControlKind::Button;
    setup.isDefault = isDefaultButton;
    return true;
}

void KButtonNativeControl::describe(KJsonWriter& out) const
{
    KControl::describe(out);
    out.member("default", isDefaultButton);
}
