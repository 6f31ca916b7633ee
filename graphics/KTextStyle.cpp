#include "graphics/KTextStyle.h"

#include "graphics/KGraphicsStreams.h"
#include "kernel/KClass.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"

#include <algorithm>

K_DEFINE_CLASS(KTextStyle, KThing)

KTextStyle::KTextStyle()
    : font(kDefaultFontName, kDefaultFontSize)
    , colour(KColor::Black)
{
}

KTextStyle::KTextStyle(const KFont& font, const KColor& colour)
    : font(font)
    , colour(colour)
{
    keepFontSizeUsable();
}

void KTextStyle::setFont(const KFont& value)
{
    font = value;
    keepFontSizeUsable();
}

void KTextStyle::keepFontSizeUsable()
{
    if (font.getSize() < kSmallestFontSize)
        font.setSize(kSmallestFontSize);
}

KTextStyle::KTextStyle(const KTextStyle& other)
    : KThing(other)
    , font(other.font)
    , colour(other.colour)
{
}

KTextStyle& KTextStyle::operator=(const KTextStyle& other)
{
    setStyle(other);
    return *this;
}

KThing* KTextStyle::deepCopy() const { return new KTextStyle(*this); }

void KTextStyle::setStyle(const KTextStyle& other)
{
    if (this == &other)
        return;
    font = other.font;
    colour = other.colour;
}

void KTextStyle::scaleFontSize(double factor)
{
    if (factor > 0.0)
        font.setSize(std::max(font.getSize() * factor, kSmallestFontSize));
}

void KTextStyle::writeToFile(KFile& file, int32_t)
{
    KGraphicsStreams::writeMainSection(file, classRecord, [&] {
        font.writeToFile(file, 1);
        colour.writeToFile(file, 1);
    });
}

bool KTextStyle::readRecord(KFile& file)
{
    KFont newFont;
    KColor newColour;
    bool read = KGraphicsStreams::readMainSection(
        file, classRecord, [&] { return newFont.readRecord(file) && newColour.readRecord(file); });
    if (!read)
        return false;
    font = newFont;
    colour = newColour;
    keepFontSizeUsable();
    return true;
}

void KTextStyle::readFromFile(KFile& file) { readRecord(file); }

void KTextStyle::describe(KJsonWriter& out) const
{
    out.member("font", font.getName());
    out.member("size", font.getSize());
    out.member("face", font.getFace());
    out.member("colour", colour.getNative());
}
