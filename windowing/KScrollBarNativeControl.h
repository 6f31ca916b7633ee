#pragma once

#include "windowing/KRangeNativeControl.h"

// A scroll bar along the longer side of its rectangle. Its value is the
// first visible unit; the thumb covers `page` units, which a click beside
// it also moves.
class KScrollBarNativeControl : public KRangeNativeControl {
    K_DECLARE_CLASS(KScrollBarNativeControl)
public:
    KScrollBarNativeControl();
    KScrollBarNativeControl(int32_t id, const KWideRectangle& bounds, double minimum = 0, double maximum = 100,
                            double value = 0);
    ~KScrollBarNativeControl() override;

    using KRangeNativeControl::setPage;
    double getPage() const { return getRange().page; }

    const char* getKindName() const override { return "scrollBar"; }

protected:
    bool describeNative(KNativeControlSetup& setup) const override;
};
