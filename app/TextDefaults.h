#pragma once

#include "graphics/KColor.h"
#include "graphics/KTextBlock.h"
#include "graphics/KTextStyle.h"
#include "windowing/KWindowingForward.h"

#include <cstdint>

// What a new text starts with: the style of its characters, its
// background and its alignment. Every change the user makes in the text
// format menu becomes the default too, so that the next text goes on in
// the style just chosen.
class TextDefaults {
public:
    // Face "Arial" at 24 points with style flags 2, black on white, left
    // aligned.
    TextDefaults();

    const KTextStyle& getStyle() const { return style; }
    const KColor& getBackColour() const { return backColour; }
    int16_t getAlignment() const { return alignment; }
    // The text in the default style and alignment.
    KTextBlock makeBlock(const KString& text) const;

    void setFontFace(const KString& family);
    void setFontSize(double points);
    // KFont's face bits.
    void setFontStyle(int32_t face);
    void setTextColour(const KColor& colour);
    void setBackColour(const KColor& colour);
    void setAlignment(int16_t value);
    // Takes every value a format event carries.
    void take(const KEvent& formatEvent);

private:
    KTextStyle style;
    KColor backColour { KColor::White };
    int16_t alignment = KTextBlock::AlignLeft;
};
