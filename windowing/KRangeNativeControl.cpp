#include "windowing/KRangeNativeControl.h"

#include "kernel/KClass.h"
#include "kernel/KJsonWriter.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KNativeLayer.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int32_t kMaximumDecimals = 6;

double roundTo(double value, int32_t decimals)
{
    double scale = std::pow(10.0, decimals);
    return std::round(value * scale) / scale;
}

} // namespace

K_DEFINE_CLASS(KRangeNativeControl, KControl)

KRangeNativeControl::KRangeNativeControl() = default;

KRangeNativeControl::~KRangeNativeControl() = default;

void KRangeNativeControl::setRange(double minimum, double maximum)
{
    if (!std::isfinite(minimum) || !std::isfinite(maximum))
        return;
    range.minimum = std::min(minimum, maximum);
    range.maximum = std::max(minimum, maximum);
    rangeChanged();
}

void KRangeNativeControl::setStep(double step)
{
    if (std::isfinite(step) && step > 0)
        range.step = step;
    rangeChanged();
}

void KRangeNativeControl::setPage(double page)
{
    if (std::isfinite(page) && page > 0)
        range.page = page;
    rangeChanged();
}

void KRangeNativeControl::setDecimals(int32_t decimals)
{
    range.decimals = std::clamp(decimals, 0, kMaximumDecimals);
    rangeChanged();
}

void KRangeNativeControl::rangeChanged()
{
    value = normalise(value);
    if (!hasNativePart())
        return;
    KNativeLayer::get().setControlRange(getNativeControl(), range);
    KNativeLayer::get().setControlValue(getNativeControl(), value);
}

void KRangeNativeControl::setValue(double wanted)
{
    value = normalise(wanted);
    if (hasNativePart())
        KNativeLayer::get().setControlValue(getNativeControl(), value);
}

int32_t KRangeNativeControl::getIntegerValue() const { return static_cast<int32_t>(std::lround(value)); }

// Rounding may step over a bound that has more digits than are shown; the
// bound wins.
double KRangeNativeControl::normalise(double wanted) const
{
    if (!std::isfinite(wanted))
        wanted = range.minimum;
    return std::clamp(roundTo(wanted, range.decimals), range.minimum, range.maximum);
}

KEventReturn KRangeNativeControl::doNativeEvent(KNativeEvent& event)
{
    double reported = 0;
    if (notificationOf(event) != KControlNotification::Changed
        || !KNativeLayer::get().controlValue(getNativeControl(), reported))
        return 0;
    double now = normalise(reported);
    if (now == value)
        return 1;
    value = now;
    return sendAction(KControlActionEvent::Changed);
}

void KRangeNativeControl::describe(KJsonWriter& out) const
{
    KControl::describe(out);
    out.member("value", value);
    out.member("minimum", range.minimum);
    out.member("maximum", range.maximum);
    out.member("step", range.step);
    out.member("page", range.page);
    out.member("decimals", range.decimals);
}

bool KRangeNativeControl::describeNative(KNativeControlSetup& setup) const
{
    setup.range = range;
    setup.value = value;
    return true;
}

void KRangeNativeControl::setUp(int32_t id, const KWideRectangle& bounds, double minimum, double maximum, double value)
{
    setId(id);
    setPosition(bounds.getOrigin());
    setSize(bounds.getSize());
    setRange(minimum, maximum);
    setValue(value);
}
