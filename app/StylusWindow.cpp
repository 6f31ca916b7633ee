#include "app/StylusWindow.h"

#include "kernel/KClass.h"
#include "windowing/KNativeLayer.h"

namespace {

StylusWindow* gStylusWindow = nullptr;

} // namespace

K_DEFINE_CLASS(StylusWindow, KWindow)

// Centred on the screen.
StylusWindow::StylusWindow()
{
    gStylusWindow = this;
    setTitle("TaleLoom");
    int32_t screenWidth = 0;
    int32_t screenHeight = 0;
    if (KNativeLayer* layer = KNativeLayer::current())
        layer->screenSize(screenWidth, screenHeight);
    int32_t x = screenWidth > kDefaultWidth ? (screenWidth - kDefaultWidth) / 2 : 0;
    int32_t y = screenHeight > kDefaultHeight ? (screenHeight - kDefaultHeight) / 2 : 0;
    setBounds(KGraphicRectangle(int16_t(x), int16_t(y), kDefaultWidth, kDefaultHeight));
}

StylusWindow::~StylusWindow()
{
    if (gStylusWindow == this)
        gStylusWindow = nullptr;
}

StylusWindow* StylusWindow::current() { return gStylusWindow; }
