#include "windowing/KProgressBarControl.h"
#include "graphics/KGraphicStateGuard.h"
#include "kernel/KClass.h"
#include "kernel/KJsonWriter.h"
#include "windowing/KWindow.h"
#include <algorithm>

K_DEFINE_CLASS(KProgressBarControl, KControl)

KProgressBarControl::KProgressBarControl() = default;

KProgressBarControl::KProgressBarControl(int32_t id, const KWideRectangle& bounds)
{
    setId(id);
    setPosition(bounds.getOrigin());
    setSize(bounds.getSize());
}

KProgressBarControl::~KProgressBarControl() = default;

void KProgressBarControl::setValue(int32_t percent)
{
    percent = std::clamp(percent, 0, 100);
    if (percent == value)
        return;
    value = percent;
    draw();
}

void KProgressBarControl::paintOn(KWindow& target)
{
    KWideRectangle bounds = getWindowBounds();
    if (bounds.isEmpty())
        return;
    KGraphicRectangle outer = bounds.toGraphic();
    KGraphicStateGuard state(target);
    target.setPenMode(KGraphicDeviceState::CopyForeground);
    target.fillRectangle(outer, KColor(KColor::White));
    KGraphicRectangle inner(int16_t(outer.x + 1), int16_t(outer.y + 1), int16_t(std::max(0, outer.width - 2)),
                            int16_t(std::max(0, outer.height - 2)));
    int16_t done = int16_t(int32_t(inner.width) * value / 100);
    if (done > 0)
        target.fillRectangle(KGraphicRectangle(inner.x, inner.y, done, inner.height), KColor(KColor::Highlight));
    target.setPenSize(1);
    target.frameRectangle(outer, KColor(KColor::Black));
}

void KProgressBarControl::describe(KJsonWriter& out) const
{
    KControl::describe(out);
    out.member("value", value);
}
