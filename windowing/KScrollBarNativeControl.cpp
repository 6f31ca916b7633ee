#include "windowing/KScrollBarNativeControl.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(KScrollBarNativeControl, KRangeNativeControl)

KScrollBarNativeControl::KScrollBarNativeControl() = default;

KScrollBarNativeControl::KScrollBarNativeControl(int32_t id, const KWideRectangle& bounds, double minimum,
                                                 double maximum, double value)
{
    setUp(id, bounds, minimum, maximum, value);
}

KScrollBarNativeControl::~KScrollBarNativeControl() = default;

bool KScrollBarNativeControl::describeNative(KNativeControlSetup& setup) const
{
    KRangeNativeControl::describeNative(setup);
    setup.kind = KNativeControlKind::ScrollBar;
    return true;
}
