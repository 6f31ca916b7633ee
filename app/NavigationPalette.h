#pragma once

#include "app/NavigationControl.h"
#include "windowing/KPaletteWindow.h"
#include "windowing/KProgressBarControl.h"
#include "windowing/KStaticTextNativeControl.h"

// The "Navigation" window: a small palette over the main window holding
// the navigation control, shown and hidden from the Edit menu. It never
// takes the keyboard from the page, has no close box, and is not shown
// while an actor is edited. It exists from start-up to the end.
class NavigationPalette : public KPaletteWindow {
    K_DECLARE_CLASS(NavigationPalette)
public:
    static constexpr int16_t kLeft = 32;
    static constexpr int16_t kTop = 64;

    NavigationPalette();
    ~NavigationPalette() override;

    static NavigationPalette* current();

    // Opens hidden; the menu shows it.
    void open(OpenMode mode) override;
    // The main window shows its first story: the control follows its tape.
    void finishOpen();
    void close() override;
    KEventReturn doPaint(KWindowEvent& event) override;

    NavigationControl& getControl() const { return *control; }
    bool isShown() const { return isOpen() && isVisible(); }
    // Shows the window when hidden and hides it when shown; while an actor
    // is edited it only hides.
    void toggle();

    // The thumbnails still to build out of `count`: "Preview: NN%" and a bar
    // under the control while work is left, never 100%; nothing when done.
    void setPreviewProgress(int32_t remaining, int32_t count);
    bool showsPreviewProgress() const { return progressShown; }
    KString getPreviewProgressText() const;

private:
    void showProgressLines(bool shown);

    NavigationControlPtr control;
    KProgressBarControlPtr progressBar;
    KPtr<KStaticTextNativeControl> progressLine;
    bool progressShown = false;
};

using NavigationPalettePtr = KPtr<NavigationPalette>;
