#pragma once

#include "windowing/KControl.h"

// A control whose value is a number between bounds: the base of the spin
// field, the slider and the scroll bar. The value always lies in the range
// and has no more digits after the point than the control shows. The
// user's change is a KControlActionEvent of type Changed.
class KRangeNativeControl : public KControl {
    K_DECLARE_CLASS(KRangeNativeControl)
public:
    KRangeNativeControl();
    ~KRangeNativeControl() override;

    // Bounds given the wrong way round are swapped; the value is brought
    // into them.
    void setRange(double minimum, double maximum);
    double getMinimum() const { return range.minimum; }
    double getMaximum() const { return range.maximum; }
    // What the arrow keys and buttons add; not above the range's size.
    void setStep(double step);
    double getStep() const { return range.step; }
    void setValue(double value);
    double getValue() const { return value; }
    // The value rounded to a whole number.
    int32_t getIntegerValue() const;
    const KNativeControlRange& getRange() const { return range; }

    KEventReturn doNativeEvent(KNativeEvent& event) override;
    void describe(KJsonWriter& out) const override;

protected:
    // What each kind's constructor does: its id, place, range and value.
    void setUp(int32_t id, const KWideRectangle& bounds, double minimum, double maximum, double value);
    bool describeNative(KNativeControlSetup& setup) const override;
    // Digits after the point, 0 to 6.
    void setDecimals(int32_t decimals);
    // What the page keys add; a scroll bar's thumb.
    void setPage(double page);
    // The value the control holds for the one asked for: within the
    // range, rounded to its decimals.
    double normalise(double value) const;

private:
    void rangeChanged();

    KNativeControlRange range;
    double value = 0;
};
