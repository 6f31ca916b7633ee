#pragma once

#include "windowing/KControl.h"

// A bar that fills from the left as work goes on: a frame, the done part in
// the highlight colour, the rest white. It takes no input. Setting the same
// value again draws nothing.
class KProgressBarControl : public KControl {
    K_DECLARE_CLASS(KProgressBarControl)
public:
    KProgressBarControl();
    KProgressBarControl(int32_t id, const KWideRectangle& bounds);
    ~KProgressBarControl() override;

    // A percentage, cut to 0..100.
    void setValue(int32_t percent);
    int32_t getValue() const { return value; }

    void describe(KJsonWriter& out) const override;
    const char* getKindName() const override { return "progress"; }

protected:
    void paintOn(KWindow& target) override;

private:
    int32_t value = 0;
};

using KProgressBarControlPtr = KPtr<KProgressBarControl>;
