#pragma once

#include "graphics/KGraphicsForward.h"
#include "kmultimedia/KLevelMeterState.h"
#include "windowing/KControl.h"

#include <cstdint>

// The input level of the record dialog: a bar for the level of the last
// drain (0 to 100, the peak sample mapped from -60..0 dBFS), with the
// highest level of the last 800 ms as a mark. Bar and mark turn red while
// that peak lies above -1 dBFS, so a child or a therapist sees that the
// microphone works, and that it is too loud, before a take is wasted.
class KLevelMeterControl : public KControl {
    K_DECLARE_CLASS(KLevelMeterControl)
public:
    static constexpr int32_t kHeight = 20;

    KLevelMeterControl();
    KLevelMeterControl(int32_t id, const KWideRectangle& bounds);
    ~KLevelMeterControl() override;

    // Takes the level at the loop's time; the control redraws.
    void setLevel(float value);
    void setLevel(float value, uint32_t nowMs);
    float getLevel() const { return meter.getLevel(); }
    float getPeak() const { return meter.getPeak(); }
    bool isClipping() const { return meter.getPeak() > KLevelMeterState::clippingLevel(); }
    const char* getKindName() const override { return "levelMeter"; }

    // Draws the meter with its top left corner at (left, top).
    void render(KGraphicDevice& device, int32_t left, int32_t top);
    // The pixels of the bar's width that a level fills.
    static int32_t filledWidth(float level, int32_t innerWidth);

protected:
    void paintOn(KWindow& target) override;

private:
    KLevelMeterState meter;
};
