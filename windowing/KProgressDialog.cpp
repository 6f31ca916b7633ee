#include "windowing/KProgressDialog.h"
#include "kernel/KClass.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KNativeLayer.h"
#include <algorithm>

K_DEFINE_CLASS(KProgressDialog, KDialog)

namespace {

constexpr int16_t kWidth = 320;
constexpr int16_t kHeight = 76;
constexpr int16_t kButtonsHeight = 44;
// Messages handled per drawing: enough for the map, the expose and a resize.
constexpr int32_t kMessagesPerDraw = 8;

} // namespace

KProgressDialog::KProgressDialog() = default;

KProgressDialog::~KProgressDialog() = default;

void KProgressDialog::begin(const KString& title, const KString& text, bool cancellable)
{
    setTitle(title);
    cancelled = false;
    setBounds(KGraphicRectangle(200, 200, kWidth, int16_t(kHeight + (cancellable ? kButtonsHeight : 0))));
    line = new KStaticTextNativeControl(text, KWideRectangle(16, 12, kWidth - 32, 20));
    bar = new KProgressBarControl(0, KWideRectangle(16, 40, kWidth - 32, 16));
    addControl(*line);
    addControl(*bar);
    KDialog::open(Normal, cancellable ? CancelButton : 0);
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

void KProgressDialog::keepAlive()
{
    KNativeLayer* layer = KNativeLayer::current();
    if (layer && layer->now() - lastDrawn >= kRefreshMilliseconds)
        letDesktopDraw();
}

// The work sees the answer at its next look and stops; the window stays
// until it has.
KEventReturn KProgressDialog::doDialogAction(int32_t buttonId)
{
    if (buttonId == getButtonId(CancelButton)) {
        cancelled = true;
        if (KButtonNativeControl* cancel = getCancelButton())
            cancel->setEnabled(false);
        return 1;
    }
    return KDialog::doDialogAction(buttonId);
}

KEventReturn KProgressDialog::doClose(KWindowEvent& event)
{
    if (!getCancelButton())
        return KDialog::doClose(event);
    doDialogAction(getButtonId(CancelButton));
    return 1;
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
