#include "app/ToolPalette.h"

#include "graphics/KColor.h"
#include "kernel/KClass.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KServices.h"

namespace {

ToolPalette* gToolPalette = nullptr;

} // namespace

K_DEFINE_CLASS(ToolPalette, KPaletteWindow)

// Centred at the bottom of the screen, without a close box.
ToolPalette::ToolPalette()
{
    gToolPalette = this;
    setWindowFlags(0);
    setTitle(kTranslate("Tools"));
    int32_t screenWidth = 0;
    int32_t screenHeight = 0;
    if (KNativeLayer* layer = KNativeLayer::current())
        layer->screenSize(screenWidth, screenHeight);
    int32_t x = screenWidth / 2 - kWidth / 2;
    int32_t y = screenHeight - 84;
    setBounds(KGraphicRectangle(int16_t(x > 0 ? x : 0), int16_t(y > 0 ? y : 0), kWidth, kShortHeight));
}

ToolPalette::~ToolPalette()
{
    if (gToolPalette == this)
        gToolPalette = nullptr;
}

ToolPalette* ToolPalette::current() { return gToolPalette; }

KEventReturn ToolPalette::doPaint(KWindowEvent&)
{
    const KGraphicRectangle& client = getClientBounds();
    fillRectangle(KGraphicRectangle(0, 0, client.width, client.height), KColor(KColor::White));
    return 1;
}
