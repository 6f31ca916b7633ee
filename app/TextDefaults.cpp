#include "app/TextDefaults.h"

#include "graphics/KFont.h"
#include "windowing/KFormatEvent.h"

#include <algorithm>

namespace {

// The flags new text has always been written with.
constexpr int32_t kDefaultStyleFlags = 2;
constexpr int32_t kStyleFaces = KFont::Bold | KFont::Italic | KFont::Underline;

} // namespace

TextDefaults::TextDefaults()
{
    KFont font(KString(KTextStyle::kDefaultFontName), KTextStyle::kDefaultFontSize);
    font.setStyleFlags(kDefaultStyleFlags);
    style = KTextStyle(font, KColor(KColor::Black));
}

KTextBlock TextDefaults::makeBlock(const KString& text) const { return KTextBlock(text, style, alignment); }

void TextDefaults::setFontFace(const KString& family)
{
    if (family.isEmpty())
        return;
    KFont font = style.getFont();
    font.setName(family);
    style.setFont(font);
}

void TextDefaults::setFontSize(double points)
{
    KFont font = style.getFont();
    font.setSize(std::clamp(points, KTextStyle::kSmallestFontSize, KFont::kMaxSize));
    style.setFont(font);
}

void TextDefaults::setFontStyle(int32_t face)
{
    KFont font = style.getFont();
    font.setFace((font.getFace() & ~kStyleFaces) | (face & kStyleFaces));
    style.setFont(font);
}

void TextDefaults::setTextColour(const KColor& colour) { style.setColour(colour); }

void TextDefaults::setBackColour(const KColor& colour) { backColour = colour; }

void TextDefaults::setAlignment(int16_t value)
{
    if (value >= KTextBlock::AlignLeft && value <= KTextBlock::AlignJustify)
        alignment = value;
}

void TextDefaults::take(const KEvent& event)
{
    double size = 0;
    if (KFormatEvent::getFontSize(event, size))
        setFontSize(size);
    KString face;
    if (KFormatEvent::getFontFace(event, face))
        setFontFace(face);
    int32_t faceBits = 0;
    if (KFormatEvent::getFontStyle(event, faceBits))
        setFontStyle(faceBits);
    KColor colour;
    if (KFormatEvent::getFontColor(event, colour))
        setTextColour(colour);
    if (KFormatEvent::getBackgroundColor(event, colour))
        setBackColour(colour);
    int16_t aligned = 0;
    if (KFormatEvent::getAlignment(event, aligned))
        setAlignment(aligned);
}
