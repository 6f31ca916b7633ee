#pragma once

#include "windowing/KDialog.h"
#include "windowing/KProgressBarControl.h"
#include "windowing/KStaticTextNativeControl.h"
#include <cstdint>

// A small window that shows how far a long piece of work has come, for work
// that runs in the event loop's own turn (a save, a publication). It opens
// at once, and each report lets the desktop draw it, at most every
// `kRefreshMilliseconds`, so the work is not slowed by the drawing. It has
// no buttons: the work cannot be left half done.
class KProgressDialog : public KDialog {
    K_DECLARE_CLASS(KProgressDialog)
public:
    static constexpr uint32_t kRefreshMilliseconds = 40;

    KProgressDialog();
    ~KProgressDialog() override;

    // Opens with the title and the line above the bar.
    void begin(const KString& title, const KString& text);
    // `done` of `total`; the bar moves and the window is drawn.
    void report(int64_t done, int64_t total);
    void end();

    int32_t getPercent() const { return bar ? bar->getValue() : 0; }

private:
    void letDesktopDraw();

    KProgressBarControlPtr bar;
    KPtr<KStaticTextNativeControl> line;
    uint32_t lastDrawn = 0;
};

using KProgressDialogPtr = KPtr<KProgressDialog>;
