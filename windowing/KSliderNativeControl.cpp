#include "windowing/KSliderNativeControl.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(KSliderNativeControl, KRangeNativeControl)

KSliderNativeControl::KSliderNativeControl() = default;

KSliderNativeControl::KSliderNativeControl(int32_t id, const KWideRectangle& bounds, double minimum, double maximum,
                                           double value)
{
    setUp(id, bounds, minimum, maximum, value);
}

KSliderNativeControl::~KSliderNativeControl() = default;

bool KSliderNativeControl::describeNative(KNativeControlSetup& setup) const
{
    KRangeNativeControl::describeNative(setup);
    setup.kind = KNativeControlKind::Slider;
    return true;
}
