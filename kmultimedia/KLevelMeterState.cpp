#include "kmultimedia/KLevelMeterState.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kFloorDb = -60.0;
constexpr double kClipDb = -1.0;

} // namespace

float KLevelMeterState::levelFromPeak(double peakFraction)
{
    if (!(peakFraction > 0.0))
        return 0.0f;
    double db = 20.0 * std::log10(std::min(peakFraction, 1.0));
    return float(std::clamp((db - kFloorDb) * 100.0 / -kFloorDb, 0.0, 100.0));
}

bool KLevelMeterState::isClipping(double peakFraction)
{
    return peakFraction > 0.0 && 20.0 * std::log10(peakFraction) > kClipDb;
}

float KLevelMeterState::clippingLevel() { return float((kClipDb - kFloorDb) * 100.0 / -kFloorDb); }

void KLevelMeterState::setLevel(float value, uint32_t nowMs)
{
    level = std::clamp(value, 0.0f, 100.0f);
    if (level > peak) {
        peak = level;
        peakTime = nowMs;
    }
    if (nowMs - peakTime > uint32_t(kPeakHoldMs)) {
        peak = 0.0f;
        peakTime = nowMs;
    }
}
