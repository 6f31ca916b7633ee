#pragma once

#include <cstdint>

// The logic of the recording level meter: the level of each drain, its
// peak held for a while and the clipping warning.
class KLevelMeterState {
public:
    static constexpr int32_t kPeakHoldMs = 800;

    // The level of a peak sample, as a fraction of full scale: -60 dBFS
    // and below is 0, 0 dBFS is 100.
    static float levelFromPeak(double peakFraction);
    // Above -1 dBFS: the take is about to be distorted.
    static bool isClipping(double peakFraction);
    // The level of a peak at -1 dBFS: a meter shows warning above it.
    static float clippingLevel();

    // The value is clipped to 0..100. A value above the peak becomes the
    // peak; a peak older than the hold time falls to 0 at once.
    void setLevel(float value, uint32_t nowMs);

    float getLevel() const { return level; }
    float getPeak() const { return peak; }

private:
    float level = 0.0f;
    float peak = 0.0f;
    uint32_t peakTime = 0;
};
