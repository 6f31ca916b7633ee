#include "graphics/KColor.h"

#include "graphics/KGraphicsStreams.h"
#include "kernel/KClass.h"
#include "kernel/KFile.h"

K_DEFINE_CLASS(KColor, KThing)

namespace {

constexpr int32_t kFirstSystemColour = KColor::ButtonFace;
constexpr int32_t kLastSystemColour = KColor::MenuText;

struct Channels {
    uint16_t red, green, blue;
};

// Numbers 14 to 20, in order; replaced by setSystemColour.
Channels gSystemColours[kLastSystemColour - kFirstSystemColour + 1] = {
    { 0xF6F6, 0xF5F5, 0xF4F4 }, // 14 button face
    { 0x3535, 0x8484, 0xE4E4 }, // 15 selected items
    { 0xFFFF, 0xFFFF, 0xFFFF }, // 16 selected text
    { 0xF6F6, 0xF5F5, 0xF4F4 }, // 17 button face
    { 0xFFFF, 0xFFFF, 0xFFFF }, // 18 menus
    { 0x3535, 0x8484, 0xE4E4 }, // 19 selected items
    { 0x2E2E, 0x3434, 0x3636 }, // 20 menu text
};

Channels namedChannels(int32_t named)
{
    switch (named) {
    case KColor::White:
        return { 65535, 65535, 65535 };
    case KColor::Red:
        return { 65535, 0, 0 };
    case KColor::Green:
        return { 0, 65535, 0 };
    case KColor::Blue:
        return { 0, 0, 65535 };
    case KColor::Yellow:
        return { 65535, 65535, 0 };
    case KColor::Cyan:
        return { 0, 65535, 65535 };
    case KColor::Magenta:
        return { 65535, 0, 65535 };
    case KColor::LightGrey:
        return { 49152, 49152, 49152 };
    case KColor::Grey:
        return { 32768, 32768, 32768 };
    case KColor::DarkGrey:
        return { 16384, 16384, 16384 };
    case KColor::MiddleGrey:
        return { 35072, 35072, 35072 };
    case KColor::VeryLightGrey:
        return { 56832, 56832, 56832 };
    default:
        if (named >= kFirstSystemColour && named <= kLastSystemColour)
            return gSystemColours[named - kFirstSystemColour];
        return { 0, 0, 0 };
    }
}

} // namespace

KColor::KColor(int32_t named) { setNamed(named); }

KThing* KColor::deepCopy() const { return new KColor(*this); }

void KColor::set(uint16_t newRed, uint16_t newGreen, uint16_t newBlue, double newTransparency)
{
    red = newRed;
    green = newGreen;
    blue = newBlue;
    transparency = newTransparency;
}

void KColor::setNamed(int32_t named)
{
    Channels c = namedChannels(named);
    set(c.red, c.green, c.blue, named == Transparent ? 1.0 : 0.0);
}

uint32_t KColor::getNative() const
{
    return (uint32_t(red >> 8) << 16) | (uint32_t(green >> 8) << 8) | uint32_t(blue >> 8);
}

void KColor::setFromNative(uint32_t pixel)
{
    red = uint16_t(((pixel >> 16) & 0xFF) << 8);
    green = uint16_t(((pixel >> 8) & 0xFF) << 8);
    blue = uint16_t((pixel & 0xFF) << 8);
    transparency = 0.0;
}

KColor KColor::fromNative(uint32_t pixel)
{
    KColor colour;
    colour.setFromNative(pixel);
    return colour;
}

bool KColor::operator==(const KColor& other) const
{
    return red == other.red && green == other.green && blue == other.blue && transparency == other.transparency;
}

void KColor::invert()
{
    red = uint16_t(65535 - red);
    green = uint16_t(65535 - green);
    blue = uint16_t(65535 - blue);
}

void KColor::setSystemColour(int32_t named, const KColor& colour)
{
    if (named < kFirstSystemColour || named > kLastSystemColour)
        return;
    gSystemColours[named - kFirstSystemColour] = { colour.red, colour.green, colour.blue };
}

// The channels as 16 bits each, then the transparency as a double.
void KColor::writeToFile(KFile& file, int32_t)
{
    KGraphicsStreams::writeMainSection(file, classRecord, [&] {
        file.writeShort(int16_t(red));
        file.writeShort(int16_t(green));
        file.writeShort(int16_t(blue));
        file.writeDouble(transparency);
    });
}

bool KColor::readRecord(KFile& file)
{
    KColor colour;
    bool read = KGraphicsStreams::readMainSection(file, classRecord, [&] {
        colour.red = uint16_t(file.readShort());
        colour.green = uint16_t(file.readShort());
        colour.blue = uint16_t(file.readShort());
        colour.transparency = file.readDouble();
        return file.getError() == 0;
    });
    if (read)
        *this = colour;
    return read;
}

void KColor::readFromFile(KFile& file) { readRecord(file); }
