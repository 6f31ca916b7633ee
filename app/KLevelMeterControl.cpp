#include "app/KLevelMeterControl.h"

#include "graphics/KColor.h"
#include "graphics/KGraphicClipGuard.h"
#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicStateGuard.h"
#include "kernel/KClass.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KWindow.h"

#include <algorithm>
#include <cmath>

namespace {

// The peak's mark, wide enough to be seen from a child's chair.
constexpr int32_t kMarkWidth = 3;

int16_t clamp16(int32_t value) { return int16_t(std::clamp<int32_t>(value, -32768, 32767)); }

KGraphicRectangle rectangle(int32_t x, int32_t y, int32_t width, int32_t height)
{
    return KGraphicRectangle(clamp16(x), clamp16(y), clamp16(width), clamp16(height));
}

} // namespace

K_DEFINE_CLASS(KLevelMeterControl, KControl)

KLevelMeterControl::KLevelMeterControl() = default;

KLevelMeterControl::KLevelMeterControl(int32_t id, const KWideRectangle& bounds)
{
    setId(id);
    setPosition(bounds.getOrigin());
    setSize(bounds.getSize());
}

KLevelMeterControl::~KLevelMeterControl() = default;

void KLevelMeterControl::setLevel(float value) { setLevel(value, knsGetTime()); }

void KLevelMeterControl::setLevel(float value, uint32_t nowMs)
{
    meter.setLevel(value, nowMs);
    draw();
}

int32_t KLevelMeterControl::filledWidth(float level, int32_t innerWidth)
{
    float fraction = std::clamp(level, 0.0f, 100.0f) / 100.0f;
    return int32_t(std::lround(fraction * float(std::max(innerWidth, 0))));
}

void KLevelMeterControl::render(KGraphicDevice& device, int32_t left, int32_t top)
{
    int32_t width = std::max(getSize().width, 3);
    int32_t height = std::max(getSize().height, 3);
    KGraphicClipGuard clip(device);
    KGraphicStateGuard state(device);
    device.intersectClip(rectangle(left, top, width, height));
    device.fillRectangle(rectangle(left, top, width, height), KColor(KColor::Black));
    int32_t innerLeft = left + 1;
    int32_t innerWidth = width - 2;
    device.fillRectangle(rectangle(innerLeft, top + 1, innerWidth, height - 2), KColor(KColor::White));
    KColor bar(isClipping() ? KColor::Red : KColor::Green);
    int32_t filled = filledWidth(getLevel(), innerWidth);
    if (filled > 0)
        device.fillRectangle(rectangle(innerLeft, top + 1, filled, height - 2), bar);
    if (getPeak() > 0.0f) {
        int32_t end = filledWidth(getPeak(), innerWidth);
        int32_t markLeft = std::max(end - kMarkWidth, 0);
        KColor mark(isClipping() ? KColor::Red : KColor::Blue);
        device.fillRectangle(rectangle(innerLeft + markLeft, top + 1, end - markLeft, height - 2), mark);
    }
}

void KLevelMeterControl::paintOn(KWindow& target)
{
    KWideRectangle bounds = getWindowBounds();
    render(target, bounds.x, bounds.y);
}
