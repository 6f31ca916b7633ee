#include "graphics/KImage.h"

#include "graphics/KBitmapCodec.h"
#include "graphics/KGraphicStateGuard.h"
#include "graphics/KGraphicsStreams.h"
#include "graphics/KImageTransforms.h"
#include "graphics/native/KNativeDevice.h"
#include "graphics/native/KNativeImageFile.h"
#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"

#include <cmath>
#include <cstring>

K_DEFINE_CLASS(KImage, KGraphicObject)

namespace {

int32_t gLiveImages = 0;

// The part of the path after its last separator.
KString leafName(const KString& path)
{
    const char* text = path.c_str();
    const char* leaf = text;
    for (const char* c = text; *c; ++c) {
        if (*c == '/' || *c == '\\')
            leaf = c + 1;
    }
    return KString(leaf);
}

KString upperExtension(const KString& path)
{
    KString leaf = leafName(path);
    const char* text = leaf.c_str();
    const char* dot = std::strrchr(text, '.');
    KString extension(dot ? dot + 1 : "");
    extension.toUpper();
    return extension;
}

bool isOneOf(const KString& value, std::initializer_list<const char*> names)
{
    for (const char* name : names) {
        if (value == name)
            return true;
    }
    return false;
}

// The caption is the caller's signature and the file's name.
void reportUnsupported(const KString& path, const KSourceLocation& where = KSourceLocation::current())
{
    KString caption = KString(where.function_name()) + " - " + leafName(path);
    KErrorHandler::raiseErrorAt(KError::UnsupportedFormat, caption.c_str());
}

// The file type written for an extension; null for one not written.
const char* writtenType(const KString& extension)
{
    if (extension == "PNG")
        return "png";
    if (isOneOf(extension, { "JPG", "JPEG" }))
        return "jpeg";
    if (extension == "BMP")
        return "bmp";
    if (isOneOf(extension, { "TIF", "TIFF" }))
        return "tiff";
    return nullptr;
}

bool sizeAllocatable(int64_t width, int64_t height)
{
    return width > 0 && height > 0 && width <= KNativeImageFile::kMaxSide && height <= KNativeImageFile::kMaxSide
           && width * height <= KNativeImageFile::kMaxPixels;
}

// A record's bounds may ask for the bitmap to be stretched, but no further
// than this many times its area: a few bytes of a damaged stream must not
// claim a page-sized bitmap.
constexpr int64_t kMaxStretchFactor = 16;

// The size a decoded bitmap is drawn at: the record's, unless that cannot
// be right, then the bitmap's own.
KGraphicSize drawnSize(const KGraphicSize& recorded, const KBitmapCodec::Picture& picture)
{
    int64_t area = int64_t(recorded.width) * recorded.height;
    int64_t pictureArea = int64_t(picture.width) * picture.height;
    if (!sizeAllocatable(recorded.width, recorded.height) || area > pictureArea * kMaxStretchFactor)
        return KGraphicSize(int16_t(picture.width), int16_t(picture.height));
    return recorded;
}

bool copyPicture(KGraphicDevice& device, const KBitmapCodec::Picture& picture)
{
    KPixelBuffer pixels;
    if (!device.beginPixelAccess(pixels) || pixels.width != picture.width || pixels.height != picture.height)
        return false;
    for (int32_t y = 0; y < picture.height; ++y)
        std::memcpy(pixels.row(y), &picture.pixels[size_t(y) * size_t(picture.width)], size_t(picture.width) * 4);
    device.endPixelAccess(KWideRectangle(0, 0, picture.width, picture.height));
    return true;
}

} // namespace

KImage::KImage()
    : device(new KGraphicDevice(kDeviceOwner))
{
    ++gLiveImages;
}

KImage::KImage(const KGraphicSize& size)
    : KImage()
{
    KImage::setSize(size);
}

KImage::~KImage() { --gLiveImages; }

int32_t KImage::liveImages() { return gLiveImages; }

KThing* KImage::deepCopy() const
{
    auto* copy = new KImage(getSize());
    if (hasImage())
        device->copyTo(copy->getDevice(), KGraphicPoint(0, 0));
    return copy;
}

KGraphicRectangle KImage::getBounds() const { return bounds; }

void KImage::drawRegion(KGraphicDevice& target, const KGraphicRectangle& source, const KGraphicRectangle& destination)
{
    if (hasImage())
        device->copyTo(target, source, destination);
}

void KImage::drawIn(KGraphicDevice& target, const KGraphicRectangle& destination)
{
    drawRegion(target, bounds, destination);
}

void KImage::drawAt(KGraphicDevice& target, const KGraphicPoint& p)
{
    drawRegion(target, bounds, KGraphicRectangle(p, bounds.getSize()));
}

void KImage::reservedEntry() { }

void KImage::createNativeSide()
{
    if (!device->hasNativeDevice() && !bounds.isEmpty())
        setSize(bounds.getSize());
}

void KImage::setSize(const KGraphicSize& size)
{
    dispose();
    if (!sizeAllocatable(size.width, size.height))
        return;
    KNativeDevice* native = KNativeDevice::createImage(size.width, size.height);
    if (!native)
        return;
    device->attachNativeDevice(native);
    bounds.set(0, 0, size.width, size.height);
}

KGraphicDevice& KImage::getDevice()
{
    if (!device->hasNativeDevice())
        createNativeSide();
    return *device;
}

bool KImage::hasImage() const { return device->hasNativeDevice(); }

KNativeDevice* KImage::getNativeImage() const
{
    if (!device->hasNativeDevice())
        KErrorHandler::raiseError(KError::PointerNull);
    return device->getNativeDevice();
}

void KImage::dispose()
{
    device->detachNativeDevice();
    bounds = KGraphicRectangle();
}

bool KImage::load(const KString& path)
{
    dispose();
    KString extension = upperExtension(path);
    if (!isOneOf(extension, { "BMP", "JPG", "JPEG", "PNG", "GIF", "TIF", "TIFF", "TGA", "XPM", "ICO" })) {
        reportUnsupported(path);
        return false;
    }
    KNativeImageFile::Picture picture;
    if (!KNativeImageFile::read(KNativeImageFile::fileNameOf(path), picture)) {
        reportUnsupported(path);
        return false;
    }
    if (!takePicture(picture)) {
        reportUnsupported(path);
        return false;
    }
    return true;
}

bool KImage::takePicture(KNativeImageFile::Picture& picture)
{
    setSize(KGraphicSize(int16_t(picture.width), int16_t(picture.height)));
    KPixelBuffer pixels;
    if (!device->beginPixelAccess(pixels))
        return false;
    for (int32_t y = 0; y < picture.height; ++y)
        std::memcpy(pixels.row(y), &picture.pixels[size_t(y) * size_t(picture.width)], size_t(picture.width) * 4);
    device->endPixelAccess(KWideRectangle(0, 0, picture.width, picture.height));
    if (!picture.alpha.empty())
        takeFileAlpha(picture.alpha, picture.width, picture.height);
    return true;
}

bool KImage::createFromFileBytes(const void* bytes, size_t size)
{
    dispose();
    KNativeImageFile::Picture picture;
    if (!KNativeImageFile::readBytes(bytes, size, picture) || !takePicture(picture)) {
        dispose();
        return false;
    }
    return true;
}

bool KImage::createFromPath(const KString& path) { return load(path); }

bool KImage::createFromPathScaled(const KString& path, const KGraphicSize& size)
{
    KImagePtr loaded(new KImage());
    if (!loaded->createFromPath(path)) {
        dispose();
        return false;
    }
    setSize(size);
    if (hasImage())
        loaded->drawIn(*device, bounds);
    return hasImage();
}

void KImage::takeFileAlpha(std::vector<uint8_t>&, int32_t, int32_t) { }

template<class Fill>
void KImage::replacePixels(int32_t width, int32_t height, Fill&& fill)
{
    KPixelBuffer in;
    if (!device->beginPixelAccess(in))
        return;
    if (!sizeAllocatable(width, height))
        return;
    KNativeDevice* native = KNativeDevice::createImage(width, height);
    KPixelBuffer out;
    if (!native || !native->beginPixels(out)) {
        delete native;
        return;
    }
    fill(in, out);
    native->endPixels(KWideRectangle(0, 0, width, height));
    device->attachNativeDevice(native);
    bounds.set(0, 0, int16_t(width), int16_t(height));
}

void KImage::makeThresholdMask(uint16_t threshold)
{
    replacePixels(bounds.width, bounds.height, [&](const KPixelBuffer& in, const KPixelBuffer& out) {
        KImageTransforms::thresholdMask(in, out, threshold);
    });
}

void KImage::makeBlurredMask(uint16_t threshold)
{
    makeThresholdMask(threshold);
    smooth();
}

void KImage::smooth()
{
    replacePixels(bounds.width, bounds.height,
                  [](const KPixelBuffer& in, const KPixelBuffer& out) { KImageTransforms::smooth(in, out); });
}

void KImage::invert()
{
    if (!hasImage())
        return;
    KGraphicStateGuard guard(*device);
    device->setPenMode(KGraphicDeviceState::Invert);
    device->fillRectangle(bounds);
}

void KImage::flipHorizontal()
{
    replacePixels(bounds.width, bounds.height,
                  [](const KPixelBuffer& in, const KPixelBuffer& out) { KImageTransforms::flipHorizontal(in, out); });
}

void KImage::flipVertical()
{
    replacePixels(bounds.width, bounds.height,
                  [](const KPixelBuffer& in, const KPixelBuffer& out) { KImageTransforms::flipVertical(in, out); });
}

void KImage::rotateLeft()
{
    replacePixels(bounds.height, bounds.width,
                  [](const KPixelBuffer& in, const KPixelBuffer& out) { KImageTransforms::rotateLeft(in, out); });
}

void KImage::rotateRight()
{
    replacePixels(bounds.height, bounds.width,
                  [](const KPixelBuffer& in, const KPixelBuffer& out) { KImageTransforms::rotateRight(in, out); });
}

void KImage::rotateHalf()
{
    replacePixels(bounds.width, bounds.height,
                  [](const KPixelBuffer& in, const KPixelBuffer& out) { KImageTransforms::rotateHalf(in, out); });
}

void KImage::shearHorizontal(double factor)
{
    KImageTransforms::Size size = KImageTransforms::shearedSize(bounds.width, bounds.height, factor);
    replacePixels(size.width, size.height, [&](const KPixelBuffer& in, const KPixelBuffer& out) {
        KImageTransforms::shearHorizontal(in, out, factor);
    });
}

void KImage::rotateBy(double degrees)
{
    // Whole quarter turns are exact.
    double turns = degrees / 90.0;
    if (std::fabs(turns - std::round(turns)) < 1e-9) {
        switch (((int64_t(std::llround(turns)) % 4) + 4) % 4) {
        case 1:
            rotateLeft();
            return;
        case 2:
            rotateHalf();
            return;
        case 3:
            rotateRight();
            return;
        default:
            return;
        }
    }
    KImageTransforms::Size size = KImageTransforms::rotatedSize(bounds.width, bounds.height, degrees);
    replacePixels(size.width, size.height, [&](const KPixelBuffer& in, const KPixelBuffer& out) {
        KImageTransforms::rotateBy(in, out, degrees);
    });
}

bool KImage::writeToPath(const KString& path)
{
    const char* type = writtenType(upperExtension(path));
    if (!type) {
        reportUnsupported(path);
        return false;
    }
    KPixelBuffer pixels;
    if (!device->beginPixelAccess(pixels))
        return false;
    return KNativeImageFile::write(KNativeImageFile::fileNameOf(path), type, pixels);
}

bool KImage::writeToFile(const KFileReference& ref) { return writeToPath(ref.getNativeText()); }

bool KImage::createFromFile(const KFileReference& ref) { return createFromPath(ref.getNativeText()); }

bool KImage::createFromFileScaled(const KFileReference& ref, const KGraphicSize& size)
{
    return createFromPathScaled(ref.getNativeText(), size);
}

// --- The class stream ------------------------------------------------------

void KImage::writeToFile(KFile& file, int32_t)
{
    KGraphicsStreams::writeMainSection(file, classRecord, [&] {
        KGraphicObject::writeToFile(file, 1);
        writeBitmap(file);
    });
}

// The length is known before the bitmap goes out, so it is written at once
// rather than patched afterwards; the bytes are the same.
void KImage::writeBitmap(KFile& file)
{
    KPixelBuffer pixels;
    int64_t size = 0;
    if (hasImage() && device->beginPixelAccess(pixels))
        size = KBitmapCodec::encodedSize(pixels.width, pixels.height);
    file.writeLong(int32_t(size));
    if (size == 0)
        return;
    uint8_t headers[KBitmapCodec::kFileHeaderSize + KBitmapCodec::kInfoHeaderSize];
    KBitmapCodec::encodeHeaders(pixels.width, pixels.height, headers);
    file.writeBytes(headers, int32_t(sizeof headers));
    std::vector<uint8_t> row(size_t(KBitmapCodec::encodedRowSize(pixels.width)));
    for (int32_t y = pixels.height - 1; y >= 0; --y) {
        KBitmapCodec::encodeRow(pixels.row(y), pixels.width, row.data());
        file.writeBytes(row.data(), int32_t(row.size()));
    }
}

bool KImage::readRecord(KFile& file)
{
    bool read = KGraphicsStreams::readMainSection(file, classRecord, [&] { return readPayload(file); });
    if (!read)
        dispose();
    return read;
}

void KImage::readFromFile(KFile& file) { readRecord(file); }

bool KImage::readPayload(KFile& file)
{
    if (!KGraphicObject::readRecord(file))
        return false;
    KGraphicSize size = bounds.getSize();
    dispose();
    int32_t length = file.readLong();
    if (file.getError() || !file.checkAvailable(length))
        return false;
    if (length == 0)
        return true;
    std::vector<uint8_t> bytes(size_t(length), 0);
    if (!file.readBytes(bytes.data(), length))
        return false;
    decodeBitmap(bytes, size);
    return true;
}

void KImage::decodeBitmap(const std::vector<uint8_t>& bytes, const KGraphicSize& size)
{
    uint32_t total = 0, pixelOffset = 0;
    if (bytes.size() < size_t(KBitmapCodec::kFileHeaderSize)
        || !KBitmapCodec::readFileHeader(bytes.data(), total, pixelOffset))
        return;
    if (total < uint32_t(KBitmapCodec::kFileHeaderSize) || total > bytes.size())
        return;
    KBitmapCodec::Picture picture;
    const uint8_t* dib = bytes.data() + KBitmapCodec::kFileHeaderSize;
    if (!KBitmapCodec::decode(dib, total - KBitmapCodec::kFileHeaderSize, pixelOffset, picture))
        return;
    KGraphicSize target = drawnSize(size, picture);
    setSize(target);
    if (!hasImage())
        return;
    if (target.width == picture.width && target.height == picture.height) {
        copyPicture(*device, picture);
        return;
    }
    // Another size is stretched over the bitmap, as a copy between devices
    // of different sizes always is.
    KImagePtr decoded(new KImage(KGraphicSize(int16_t(picture.width), int16_t(picture.height))));
    if (decoded->hasImage() && copyPicture(decoded->getDevice(), picture))
        decoded->drawIn(*device, bounds);
}
