#pragma once

#include "graphics/KGraphicsForward.h"
#include "kernel/KFlagSet.h"
#include "kernel/KString.h"
#include "kernel/KThing.h"

// A font description: family name, size in points, face (style bits). The
// native font is made on demand and dropped whenever the description
// changes.
class KFont : public KThing {
    K_DECLARE_CLASS(KFont)
public:
    // The face bits.
    enum Face : int32_t {
        Plain = 0,
        Bold = 1,
        Italic = 2,
        Underline = 4,
        Outline = 8,
        Shadow = 16,
        Condense = 32,
        Extend = 64,
        Strikeout = 128,
    };
    static constexpr double kDefaultSize = 12.0;
    // Sizes above this are taken as this; the native font works in fixed
    // point and a stored size may be anything.
    static constexpr double kMaxSize = 4096.0;

    // The application's standard font (number 1).
    KFont();
    // 0 the system font, 1 to 3 the application's, others the fallback.
    explicit KFont(KStandardFont standard);
    // A size of 0 (or less) keeps the default of 12 points.
    KFont(const KString& name, double size = 0.0, int32_t face = Plain);
    KFont(const KFont& other);
    KFont& operator=(const KFont& other);
    ~KFont() override;

    KThing* deepCopy() const override;

    // Name as a KString record, size as a double, face in 16 bits, the style
    // flags as a KFlagSet record.
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    // False, with the font as it was, when the record is damaged.
    bool readRecord(KFile& file);

    const KString& getName() const { return name; }
    double getSize() const { return size; }
    int32_t getFace() const { return face; }
    const KFlagSet& getStyleFlags() const { return styleFlags; }
    void setName(const KString& value);
    void setSize(double value);
    void setFace(int32_t value);
    void setStyleFlags(const KFlagSet& value) { styleFlags = value; }
    void setStyleFlags(int32_t value) { styleFlags.setValue(value); }

    bool operator==(const KFont& other) const;
    bool operator!=(const KFont& other) const { return !(*this == other); }

    // Metrics at screen resolution, in pixels.
    int32_t getAscent() const;
    int32_t getDescent() const;
    int32_t getLineHeight() const;
    // The size of the text drawn in this font on one line.
    KWideSize measureString(const KString& text) const;

    KNativeFont* getNativeFont() const;

    // Whether the family is installed, or a stand-in made for it: names
    // that only reach the fallback font are not.
    static bool isFamilyInstalled(const KString& family);

private:
    void clearNative();

    KString name;
    double size = kDefaultSize;
    int32_t face = Plain;
    KFlagSet styleFlags;
    mutable KNativeFont* nativeFont = nullptr;
};

// The name and size of a standard font: 0 "System" at 11 points, 1 to 3
// "Arial" at 11, others "helvetica" at 12. An empty size pointer is
// reported as error 18.
void kksGetStandardFont(KStandardFont font, KString& name, double* size);
