#include "app/NavigationPalette.h"

#include "app/StylusModes.h"
#include "app/StylusWindow.h"
#include "app/UiText.h"
#include "kernel/KClass.h"
#include "windowing/KWindowEvent.h"
#include <algorithm>
#include <string>

namespace {

NavigationPalette* gNavigationPalette = nullptr;

} // namespace

K_DEFINE_CLASS(NavigationPalette, KPaletteWindow)

namespace {

constexpr int16_t kLineLeft = 4;
constexpr int16_t kLineWidth = 194;
constexpr int16_t kTextHeight = 14;
constexpr int16_t kBarHeight = 16;

} // namespace

NavigationPalette::NavigationPalette()
    : control(new NavigationControl())
    , progressBar(new KProgressBarControl(
          0, KWideRectangle(kLineLeft, NavigationControl::kHeight + kTextHeight, kLineWidth, kBarHeight)))
    , progressLine(new KStaticTextNativeControl(
          KString(), KWideRectangle(kLineLeft, NavigationControl::kHeight, kLineWidth, kTextHeight)))
{
    gNavigationPalette = this;
    setWindowFlags(0);
    setTitle(uiText("Navigation"));
    setBackground(KColor(KColor::White));
    setBounds(KGraphicRectangle(kLeft, kTop, NavigationControl::kWidth, NavigationControl::kHeight));
    addControl(*control);
}

NavigationPalette::~NavigationPalette()
{
    if (gNavigationPalette == this)
        gNavigationPalette = nullptr;
}

NavigationPalette* NavigationPalette::current() { return gNavigationPalette; }

void NavigationPalette::open(OpenMode) { KPaletteWindow::open(OpenMode::Hidden); }

void NavigationPalette::finishOpen()
{
    control->refreshBookmarks();
    control->followTape();
}

void NavigationPalette::close()
{
    if (isOpen())
        KPaletteWindow::close();
}

KEventReturn NavigationPalette::doPaint(KWindowEvent&)
{
    const KGraphicRectangle& client = getClientBounds();
    fillRectangle(KGraphicRectangle(0, 0, client.width, client.height), KColor(KColor::White));
    return 0;
}

void NavigationPalette::setPreviewProgress(int32_t remaining, int32_t count)
{
    if (remaining <= 0 || count <= 0) {
        showProgressLines(false);
        return;
    }
    int32_t percent = std::clamp(100 - int32_t(int64_t(remaining) * 100 / count), 0, 99);
    progressLine->setText(uiText("Preview") + ": " + KString(std::to_string(percent).c_str()) + "%");
    progressBar->setValue(percent);
    showProgressLines(true);
}

KString NavigationPalette::getPreviewProgressText() const
{
    return progressShown ? progressLine->getText() : KString();
}

// The window grows by both lines and two pixels, and shrinks back to the
// control alone.
void NavigationPalette::showProgressLines(bool shown)
{
    if (shown == progressShown)
        return;
    progressShown = shown;
    KGraphicRectangle frame = getClientBounds();
    int16_t height = NavigationControl::kHeight;
    if (shown) {
        addControl(*progressLine);
        addControl(*progressBar);
        height = int16_t(height + kTextHeight + kBarHeight + 2);
    } else {
        removeControl(*progressBar);
        removeControl(*progressLine);
    }
    setBounds(KGraphicRectangle(frame.x, frame.y, frame.width, height));
}

void NavigationPalette::toggle()
{
    if (!isOpen())
        return;
    if (isShown()) {
        show(false);
        return;
    }
    StylusWindow* window = StylusWindow::current();
    if (window && window->getWindowMode() == WindowMode::ActorEditing)
        return;
    control->refreshBookmarks();
    control->followTape();
    show(true);
}
