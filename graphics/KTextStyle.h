#pragma once

#include "graphics/KColor.h"
#include "graphics/KFont.h"
#include "graphics/KGraphicsForward.h"
#include "kernel/KThing.h"

// The look of a stretch of text: a font and a colour.
class KTextStyle : public KThing {
    K_DECLARE_CLASS(KTextStyle)
public:
    // New text is written in this font and size, in black.
    static constexpr const char* kDefaultFontName = "Arial";
    static constexpr double kDefaultFontSize = 24.0;
    // Smaller sizes vanish in the layout's fixed point; a style never holds
    // one (the font clamps sizes above its own maximum).
    static constexpr double kSmallestFontSize = 0.5;

    // The default style.
    KTextStyle();
    KTextStyle(const KFont& font, const KColor& colour);
    KTextStyle(const KTextStyle& other);
    KTextStyle& operator=(const KTextStyle& other);

    KThing* deepCopy() const override;
    // Section 1: the KFont record, then the KColor record.
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;
    // False, with the style as it was, when the record is damaged.
    bool readRecord(KFile& file);

    const KFont& getFont() const { return font; }
    const KColor& getColour() const { return colour; }
    void setFont(const KFont& value);
    void setColour(const KColor& value) { colour = value; }
    // Font and colour of the other style, whatever class it is.
    void setStyle(const KTextStyle& other);
    // The font's size times the factor, never below the smallest size
    // that still draws.
    void scaleFontSize(double factor);

    // Same font and same colour.
    bool hasSameStyle(const KTextStyle& other) const { return font == other.font && colour == other.colour; }

private:
    void keepFontSizeUsable();

    KFont font;
    KColor colour;
};
