#include "app/ToolPalette.h"

#include "app/StylusWindow.h"
#include "kernel/KClass.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KServices.h"

namespace {

ToolPalette* gToolPalette = nullptr;

struct Channels {
    uint16_t red, green, blue;
};

// In button order; the buttons pair on two rows, light above dark.
constexpr Channels kDefaultColours[ToolPalette::kColourCount] = {
    { 0xFFFF, 0xFFFF, 0xFFFF }, { 0, 0, 0 },           { 0xC600, 0xC600, 0xC600 }, { 0x5A00, 0x5A00, 0x5A00 },
    { 0xF700, 0xF700, 0x0800 }, { 0xEF00, 0xB600, 0 }, { 0xEF00, 0x6100, 0x0800 }, { 0xEF00, 0, 0 },
    { 0xE700, 0, 0x5A00 },      { 0x8C00, 0, 0x6B00 }, { 0, 0xCF00, 0xE700 },      { 0, 0, 0xE700 },
    { 0x3100, 0xE700, 0x3100 }, { 0, 0xA600, 0 },      { 0xD600, 0x8600, 0 },      { 0x8C00, 0x2800, 0 },
};

bool isColourButton(int32_t index) { return index >= 0 && index < ToolPalette::kColourCount; }

} // namespace

K_DEFINE_CLASS(ToolPalette, KPaletteWindow)

// Centred at the bottom of the screen, without a close box.
ToolPalette::ToolPalette()
{
    gToolPalette = this;
    setWindowFlags(0);
    // The palette carries the program's name.
    setTitle(kTranslate("TaleLoom"));
    int32_t screenWidth = 0;
    int32_t screenHeight = 0;
    if (KNativeLayer* layer = KNativeLayer::current())
        layer->screenSize(screenWidth, screenHeight);
    int32_t x = screenWidth / 2 - kWidth / 2;
    int32_t y = screenHeight - 84;
    setBounds(KGraphicRectangle(int16_t(x > 0 ? x : 0), int16_t(y > 0 ? y : 0), kWidth, kShortHeight));
    for (int32_t i = 0; i < kColourCount; ++i)
        colours[size_t(i)] = defaultButtonColor(i);
}

ToolPalette::~ToolPalette()
{
    if (gToolPalette == this)
        gToolPalette = nullptr;
}

ToolPalette* ToolPalette::current() { return gToolPalette; }

KColor ToolPalette::defaultButtonColor(int32_t index)
{
    if (!isColourButton(index))
        return KColor(KColor::Black);
    const Channels& c = kDefaultColours[index];
    return KColor(c.red, c.green, c.blue);
}

KEventReturn ToolPalette::doPaint(KWindowEvent&)
{
    const KGraphicRectangle& client = getClientBounds();
    fillRectangle(KGraphicRectangle(0, 0, client.width, client.height), KColor(KColor::White));
    return 1;
}

void ToolPalette::setBrushSize(int16_t size, bool quiet)
{
    brushSize = size;
    if (!quiet)
        tellMainWindow();
}

void ToolPalette::setBrushColor(const KColor& colour) { setButtonColor(selectedButton, colour); }

void ToolPalette::setButtonColor(int32_t index, const KColor& colour)
{
    if (!isColourButton(index))
        return;
    colours[size_t(index)] = colour;
    if (index == selectedButton)
        tellMainWindow();
}

void ToolPalette::selectColorButton(int32_t index)
{
    if (!isColourButton(index))
        return;
    selectedButton = index;
    tellMainWindow();
}

void ToolPalette::swapPaletteState()
{
    full = !full;
    KGraphicRectangle frame = getClientBounds();
    frame.height = full ? kFullHeight : kShortHeight;
    setClientBounds(frame);
}

void ToolPalette::updateState(int32_t windowMode) { shownWindowMode = windowMode; }

void ToolPalette::tellMainWindow()
{
    if (StylusWindow* window = StylusWindow::current())
        window->updateBrushSprite();
}
