#pragma once

#include "windowing/KRangeNativeControl.h"

// A number field with up and down arrows, showing a set count of digits
// after the point (0 by default).
class KSpinFieldNativeControl : public KRangeNativeControl {
    K_DECLARE_CLASS(KSpinFieldNativeControl)
public:
    KSpinFieldNativeControl();
    KSpinFieldNativeControl(int32_t id, const KWideRectangle& bounds, double minimum = 0, double maximum = 100,
                            double value = 0);
    ~KSpinFieldNativeControl() override;

    using KRangeNativeControl::setDecimals;
    int32_t getDecimals() const { return getRange().decimals; }

    const char* getKindName() const override { return "spinField"; }

protected:
    bool describeNative(KNativeControlSetup& setup) const override;
};
