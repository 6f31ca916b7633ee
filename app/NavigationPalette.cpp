#include "app/NavigationPalette.h"

#include "app/StylusModes.h"
#include "app/StylusWindow.h"
#include "app/UiText.h"
#include "kernel/KClass.h"
#include "windowing/KWindowEvent.h"

namespace {

NavigationPalette* gNavigationPalette = nullptr;

} // namespace

K_DEFINE_CLASS(NavigationPalette, KPaletteWindow)

NavigationPalette::NavigationPalette()
    : control(new NavigationControl())
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
