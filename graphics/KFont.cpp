#include "graphics/KFont.h"

#include "graphics/KGraphicsStreams.h"
#include "graphics/KWideSize.h"
#include "graphics/native/KNativeText.h"
#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"

#include <algorithm>

K_DEFINE_CLASS(KFont, KThing)

namespace {

// Not a number and sizes of 0 or less give the default.
double sanitisedSize(double size)
{
    if (!(size > 0.0))
        return KFont::kDefaultSize;
    return std::min(size, KFont::kMaxSize);
}

} // namespace

void kksGetStandardFont(KStandardFont font, KString& name, double* size)
{
    if (!size) {
        KErrorHandler::raiseError(KError::PointerNull);
        return;
    }
    // The desktop has no system font object to ask, so the fallbacks for
    // "fails to answer" stand; fontconfig maps the names to real fonts.
    if (font == 0) {
        name = "System";
        *size = 11.0;
    } else if (font >= 1 && font <= 3) {
        name = "Arial";
        *size = 11.0;
    } else {
        name = "helvetica";
        *size = 12.0;
    }
}

KFont::KFont()
    : KFont(KStandardFont(1))
{
}

KFont::KFont(KStandardFont standard) { kksGetStandardFont(standard, name, &size); }

KFont::KFont(const KString& name, double size, int32_t face)
    : name(name)
    , size(sanitisedSize(size))
    , face(face)
{
}

KFont::KFont(const KFont& other)
    : KThing(other)
    , name(other.name)
    , size(other.size)
    , face(other.face)
    , styleFlags(other.styleFlags)
{
}

KFont& KFont::operator=(const KFont& other)
{
    if (this != &other) {
        name = other.name;
        size = other.size;
        face = other.face;
        styleFlags = other.styleFlags;
        clearNative();
    }
    return *this;
}

KFont::~KFont() { clearNative(); }

KThing* KFont::deepCopy() const { return new KFont(*this); }

void KFont::setName(const KString& value)
{
    name = value;
    clearNative();
}

void KFont::setSize(double value)
{
    size = sanitisedSize(value);
    clearNative();
}

void KFont::setFace(int32_t value)
{
    face = value;
    clearNative();
}

bool KFont::operator==(const KFont& other) const
{
    return name.compare(other.name) == 0 && size == other.size && face == other.face && styleFlags == other.styleFlags;
}

void KFont::clearNative()
{
    kDisposeNativeFont(nativeFont);
    nativeFont = nullptr;
}

KNativeFont* KFont::getNativeFont() const
{
    if (!nativeFont)
        nativeFont = kCreateNativeFont(kGraphicsTextToUtf8(name), size, face);
    return nativeFont;
}

int32_t KFont::getAscent() const { return kMeasureFont(getNativeFont()).ascent; }
int32_t KFont::getDescent() const { return kMeasureFont(getNativeFont()).descent; }
int32_t KFont::getLineHeight() const { return kMeasureFont(getNativeFont()).lineHeight; }

KWideSize KFont::measureString(const KString& text) const
{
    int32_t width = 0, height = 0;
    kMeasureText(getNativeFont(), face, kGraphicsTextToUtf8(text), width, height);
    return { width, height };
}

void KFont::writeToFile(KFile& file, int32_t)
{
    KGraphicsStreams::writeMainSection(file, classRecord, [&] {
        name.writeToFile(file, 1);
        file.writeDouble(size);
        file.writeShort(int16_t(face));
        styleFlags.writeToFile(file, 1);
    });
}

bool KFont::readRecord(KFile& file)
{
    KString newName;
    double newSize = 0.0;
    int16_t newFace = 0;
    KFlagSet newFlags;
    bool read = KGraphicsStreams::readMainSection(file, classRecord, [&] {
        if (!KGraphicsStreams::readNested(file, newName))
            return false;
        newSize = file.readDouble();
        newFace = file.readShort();
        return file.getError() == 0 && KGraphicsStreams::readNested(file, newFlags);
    });
    if (!read)
        return false;
    name = newName;
    size = sanitisedSize(newSize);
    face = newFace;
    styleFlags = newFlags;
    clearNative();
    return true;
}

void KFont::readFromFile(KFile& file) { readRecord(file); }

bool KFont::isFamilyInstalled(const KString& family) { return kFontFamilyResolves(kGraphicsTextToUtf8(family)); }
