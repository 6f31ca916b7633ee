#include "windowing/KSpinFieldNativeControl.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(KSpinFieldNativeControl, KRangeNativeControl)

KSpinFieldNativeControl::KSpinFieldNativeControl() = default;

KSpinFieldNativeControl::KSpinFieldNativeControl(int32_t id, const KWideRectangle& bounds, double minimum,
                                                 double maximum, double value)
{
    setUp(id, bounds, minimum, maximum, value);
}

KSpinFieldNativeControl::~KSpinFieldNativeControl() = default;

bool KSpinFieldNativeControl::describeNative(KNativeControlSetup& setup) const
{
    KRangeNativeControl::describeNative(setup);
    setup.kind = KNativeControlKind::SpinField;
    return true;
}
