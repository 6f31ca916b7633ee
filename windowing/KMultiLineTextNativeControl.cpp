#include "windowing/KMultiLineTextNativeControl.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(KMultiLineTextNativeControl, KEntryNativeControl)

KMultiLineTextNativeControl::KMultiLineTextNativeControl() = default;

KMultiLineTextNativeControl::KMultiLineTextNativeControl(int32_t id, const KString& text, const KWideRectangle& bounds,
                                                         int32_t limit)
    : KEntryNativeControl(id, text, bounds, limit)
{
}

KMultiLineTextNativeControl::~KMultiLineTextNativeControl() = default;

bool KMultiLineTextNativeControl::describeNative(KNativeControlSetup& setup) const
{
    KEntryNativeControl::describeNative(setup);
    setup.kind = KNativeControlKind::MultiLineText;
    return true;
}
