#include "windowing/KProgressDialog.h"
#include "kernel/KClass.h"
#include "windowing/KNativeLayer.h"
#include <algorithm>

K_DEFINE_CLASS(KProgressDialog, KDialog)

namespace {

constexpr int16_t kWidth = 320;
constexpr int16_t kHeight = 76;
// Messages handled per drawing: enough for the map, the expose and a resize.
constexpr int32_t kMessagesPerDraw = 8;

} // namespace

KProgressDialog::KProgressDialog() = default;

KProgressDialog::~KProgressDialog() = default;

void KProgressDialog::begin(const KString& title, const KString& text)
{
    setTitle(title);
    setBounds(KGraphicRectangle(200, 200, kWidth, kHeight));
    line = new KStaticTextNativeControl(text, KWideRectangle(16, 12, kWidth - 32, 20));
    bar = new KProgressBarControl(0, KWideRectangle(16, 40, kWidth - 32, 16));
    addControl(*line);
    addControl(*bar);
    KDialog::open(Normal, 0);
    lastDrawn = 0;
    letDesktopDraw();
}

void KProgressDialog::report(int64_t done, int64_t total)
{
    if (!bar)
        return;
    int32_t percent = total > 0 ? int32_t(std::clamp<int64_t>(done * 100 / total, 0, 100)) : 0;
    bar->setValue(percent);
    KNativeLayer* layer = KNativeLayer::current();
    uint32_t now = layer ? layer->now() : 0;
    if (now - lastDrawn >= kRefreshMilliseconds)
        letDesktopDraw();
}

void KProgressDialog::end()
{
    if (isOpen())
        close();
}

void KProgressDialog::letDesktopDraw()
{
    KNativeLayer* layer = KNativeLayer::current();
    if (!layer)
        return;
    bool keepRunning = true;
    for (int32_t i = 0; i < kMessagesPerDraw && keepRunning; ++i)
        layer->processNativeMessage(false, keepRunning, 0);
    lastDrawn = layer->now();
}
