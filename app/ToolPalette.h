#pragma once

#include "graphics/KColor.h"
#include "windowing/KPaletteWindow.h"

#include <array>

// The strip of tools that floats over the main window, at the bottom of
// the screen. It owns what a new stroke takes: the brush size and the
// colour of the selected one of its 16 colour buttons. Its background is
// white.
class ToolPalette : public KPaletteWindow {
    K_DECLARE_CLASS(ToolPalette)
public:
    static constexpr int32_t kWidth = 640;
    static constexpr int32_t kShortHeight = 67;
    static constexpr int32_t kFullHeight = 129;
    static constexpr int32_t kColourCount = 16;
    static constexpr int16_t kDefaultBrushSize = 32;
    static constexpr int16_t kMinimumBrushSize = 4;
    static constexpr int16_t kMaximumBrushSize = 128;
    // Button 1, white.
    static constexpr int32_t kDefaultColourButton = 0;

    ToolPalette();
    ~ToolPalette() override;

    static ToolPalette* current();

    KEventReturn doPaint(KWindowEvent& event) override;

    int16_t getBrushSize() const { return brushSize; }
    // Any size is kept as given: the thin pen sets 1 for one stroke. The
    // main window is told unless `quiet`.
    void setBrushSize(int16_t size, bool quiet = false);
    const KColor& getBrushColor() const { return colours[size_t(selectedButton)]; }
    // Puts the colour into the selected button.
    void setBrushColor(const KColor& colour);
    int32_t getSelectedButton() const { return selectedButton; }
    // Buttons 0 to 15; others are ignored.
    void selectColorButton(int32_t index);
    const KColor& getButtonColor(int32_t index) const { return colours[size_t(index)]; }
    void setButtonColor(int32_t index, const KColor& colour);
    static KColor defaultButtonColor(int32_t index);

    bool isFull() const { return full; }
    void swapPaletteState();
    // The kind picture of the modify button: the tool entry of the element
    // before the position.
    void setElementIndicator(int32_t entry) { elementIndicator = entry; }
    int32_t getElementIndicator() const { return elementIndicator; }
    // Shows the play button in its playing or resting form.
    void updateState(int32_t windowMode);
    int32_t getShownWindowMode() const { return shownWindowMode; }

private:
    void tellMainWindow();

    std::array<KColor, kColourCount> colours;
    int32_t selectedButton = kDefaultColourButton;
    int16_t brushSize = kDefaultBrushSize;
    int32_t elementIndicator = 0;
    int32_t shownWindowMode = 0;
    bool full = false;
};
