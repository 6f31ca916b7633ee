#pragma once

#include "windowing/KDialog.h"
#include "windowing/KProgressBarControl.h"
#include "windowing/KStaticTextNativeControl.h"
#include <cstdint>

// A small window that shows how far a long piece of work has come, for work
// that runs in the event loop's own turn (a save, a publication). It opens
// at once, and each report lets the desktop draw it, at most every
// `kRefreshMilliseconds`, so the work is not slowed by the drawing. It has
// no buttons, so that the work is not left half done, unless the work can
// stop cleanly: then it has Cancel, which the work asks after.
class KProgressDialog : public KDialog {
    K_DECLARE_CLASS(KProgressDialog)
public:
    static constexpr uint32_t kRefreshMilliseconds = 40;

    KProgressDialog();
    ~KProgressDialog() override;

    // Opens with the title and the line above the bar.
    void begin(const KString& title, const KString& text, bool cancellable = false);
    // `done` of `total`; the bar moves and the window is drawn.
    void report(int64_t done, int64_t total);
    void end();

    int32_t getPercent() const { return bar ? bar->getValue() : 0; }
    // Cancel was pressed, or the window closed.
    bool isCancelled() const { return cancelled; }
    // Lets the desktop draw and answer the buttons while the work waits.
    void keepAlive();

protected:
    KEventReturn doDialogAction(int32_t buttonId) override;
    // Closing the window of work that can stop is Cancel.
    KEventReturn doClose(KWindowEvent& event) override;

private:
    void letDesktopDraw();

    KProgressBarControlPtr bar;
    KPtr<KStaticTextNativeControl> line;
    uint32_t lastDrawn = 0;
    bool cancelled = false;
};

using KProgressDialogPtr = KPtr<KProgressDialog>;
