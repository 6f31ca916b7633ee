#pragma once

#include "windowing/KRangeNativeControl.h"

// A slider of whole numbers; it lies along the longer side of its
// rectangle.
class KSliderNativeControl : public KRangeNativeControl {
    K_DECLARE_CLASS(KSliderNativeControl)
public:
    KSliderNativeControl();
    KSliderNativeControl(int32_t id, const KWideRectangle& bounds, double minimum = 0, double maximum = 100,
                         double value = 0);
    ~KSliderNativeControl() override;

    using KRangeNativeControl::setPage;

    const char* getKindName() const override { return "slider"; }

protected:
    bool describeNative(KNativeControlSetup& setup) const override;
};
