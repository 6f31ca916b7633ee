#pragma once

#include "graphics/KGraphicsForward.h"
#include "kernel/KThing.h"

// A colour: three 16-bit channels and a transparency from 0.0 (opaque) to
// 1.0 (invisible). Devices work in 8 bits a channel, the high byte of each.
class KColor : public KThing {
    K_DECLARE_CLASS(KColor)
public:
    // The named colours, used throughout the program by number. 14 to 20
    // come from the desktop's theme (see setSystemColour).
    enum Named : int32_t {
        Transparent = 0,
        Black = 1,
        White = 2,
        Red = 3,
        Green = 4,
        Blue = 5,
        Yellow = 6,
        Cyan = 7,
        Magenta = 8,
        LightGrey = 9,
        Grey = 10,
        DarkGrey = 11,
        MiddleGrey = 12,
        VeryLightGrey = 13,
        ButtonFace = 14,
        Highlight = 15,
        HighlightText = 16,
        ButtonFace2 = 17,
        Menu = 18,
        Highlight2 = 19,
        MenuText = 20,
    };

    KColor() = default;
    // An unknown number gives black.
    explicit KColor(int32_t named);
    KColor(uint16_t red, uint16_t green, uint16_t blue, double transparency = 0.0)
        : red(red)
        , green(green)
        , blue(blue)
        , transparency(transparency)
    {
    }
    KColor(const KColor& other)
        : KThing(other)
        , red(other.red)
        , green(other.green)
        , blue(other.blue)
        , transparency(other.transparency)
    {
    }
    KColor& operator=(const KColor& other)
    {
        red = other.red;
        green = other.green;
        blue = other.blue;
        transparency = other.transparency;
        return *this;
    }

    KThing* deepCopy() const override;

    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    // Reads the record; false, with the members as they were, when it is
    // damaged or of another class.
    bool readRecord(KFile& file);

    void set(uint16_t newRed, uint16_t newGreen, uint16_t newBlue, double newTransparency = 0.0);
    void setNamed(int32_t named);
    uint16_t getRed() const { return red; }
    uint16_t getGreen() const { return green; }
    uint16_t getBlue() const { return blue; }
    double getTransparency() const { return transparency; }
    void setRed(uint16_t value) { red = value; }
    void setGreen(uint16_t value) { green = value; }
    void setBlue(uint16_t value) { blue = value; }
    void setTransparency(double value) { transparency = value; }

    // The native form is the pixel of an RGB24 surface, 0x00RRGGBB: each
    // channel the high byte of its 16-bit value. Reading one back turns each
    // 8-bit channel c into c << 8, with transparency 0.0.
    uint32_t getNative() const;
    void setFromNative(uint32_t pixel);
    static KColor fromNative(uint32_t pixel);

    // All three channels exactly, then the transparency.
    bool operator==(const KColor& other) const;
    bool operator!=(const KColor& other) const { return !(*this == other); }
    // The comparison a device uses to tell whether a colour changes anything.
    bool isNativeEqual(const KColor& other) const { return getNative() == other.getNative(); }

    // Each channel becomes 65535 minus itself.
    void invert();

    // The theme's colours behind the numbers 14 to 20; the windowing layer
    // installs the desktop's, and until then a light neutral theme stands.
    static void setSystemColour(int32_t named, const KColor& colour);

    uint16_t red = 0;
    uint16_t green = 0;
    uint16_t blue = 0;
    double transparency = 0.0;
};
