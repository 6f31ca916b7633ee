#include "graphics/KAlphaImage.h"

#include "graphics/KGraphicStateGuard.h"
#include "graphics/KGraphicsStreams.h"
#include "graphics/KPixelOps.h"
#include "graphics/native/KNativeDevice.h"
#include "kernel/KClass.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"

#include <algorithm>

K_DEFINE_CLASS(KAlphaImage, KImage)

KAlphaImage::KAlphaImage() = default;

KAlphaImage::KAlphaImage(const KGraphicSize& size)
    : KImage(size)
{
}

KAlphaImage::~KAlphaImage() = default;

KThing* KAlphaImage::deepCopy() const
{
    auto* copy = new KAlphaImage(getSize());
    if (hasImage())
        device->copyTo(copy->getDevice(), KGraphicPoint(0, 0));
    if (mask)
        copy->mask = static_cast<KImage*>(mask->deepCopy());
    if (alphaPlane)
        copy->alphaPlane = static_cast<KImage*>(alphaPlane->deepCopy());
    copy->hotSpot = hotSpot;
    copy->blendMode = blendMode;
    copy->transparency = transparency;
    copy->rebuildNativeAlpha();
    return copy;
}

// --- Loading and turning ---------------------------------------------------

template<class Own, class Other>
void KAlphaImage::turn(Own&& own, Other&& other)
{
    disposeNativeAlpha();
    own();
    if (mask)
        other(*mask);
    if (alphaPlane)
        other(*alphaPlane);
    rebuildNativeAlpha();
}

void KAlphaImage::setSize(const KGraphicSize& size)
{
    disposeNativeAlpha();
    alphaPlane.clear();
    KImage::setSize(size);
}

bool KAlphaImage::createFromPath(const KString& path)
{
    disposeNativeAlpha();
    alphaPlane.clear();
    bool loaded = KImage::createFromPath(path);
    rebuildNativeAlpha();
    return loaded;
}

bool KAlphaImage::createFromFileBytes(const void* bytes, size_t size)
{
    disposeNativeAlpha();
    alphaPlane.clear();
    bool loaded = KImage::createFromFileBytes(bytes, size);
    rebuildNativeAlpha();
    return loaded;
}

bool KAlphaImage::createFromPathScaled(const KString& path, const KGraphicSize& size)
{
    disposeNativeAlpha();
    alphaPlane.clear();
    KAlphaImagePtr loaded(new KAlphaImage());
    if (!loaded->createFromPath(path)) {
        dispose();
        return false;
    }
    KImage::setSize(size);
    if (!hasImage())
        return false;
    loaded->getDevice().copyTo(*device, loaded->getBounds(), bounds);
    if (loaded->alphaPlane) {
        alphaPlane = new KImage(size);
        loaded->alphaPlane->drawIn(alphaPlane->getDevice(), bounds);
    }
    rebuildNativeAlpha();
    return true;
}

bool KAlphaImage::createFromPaths(const KString& imagePath, const KString& maskPath)
{
    if (!createFromPath(imagePath))
        return false;
    KImagePtr newMask(new KImage());
    if (!newMask->createFromPath(maskPath))
        return false;
    setMask(*newMask);
    return true;
}

bool KAlphaImage::createFromFiles(const KFileReference& image, const KFileReference& mask)
{
    return createFromPaths(image.getNativeText(), mask.getNativeText());
}

void KAlphaImage::flipHorizontal()
{
    turn([this] { KImage::flipHorizontal(); }, [](KImage& image) { image.flipHorizontal(); });
}

void KAlphaImage::flipVertical()
{
    turn([this] { KImage::flipVertical(); }, [](KImage& image) { image.flipVertical(); });
}

void KAlphaImage::rotateLeft()
{
    turn([this] { KImage::rotateLeft(); }, [](KImage& image) { image.rotateLeft(); });
}

void KAlphaImage::rotateRight()
{
    turn([this] { KImage::rotateRight(); }, [](KImage& image) { image.rotateRight(); });
}

void KAlphaImage::rotateHalf()
{
    turn([this] { KImage::rotateHalf(); }, [](KImage& image) { image.rotateHalf(); });
}

// Areas a shear or a turn uncovers come out black. On the mask that would
// make them opaque, so the mask is turned inverted: they let the target
// through. On the alpha plane black is already transparent.
void KAlphaImage::shearHorizontal(double factor)
{
    turn([&] { KImage::shearHorizontal(factor); },
         [&](KImage& image) {
             bool isMask = &image == mask.get();
             if (isMask)
                 image.invert();
             image.shearHorizontal(factor);
             if (isMask)
                 image.invert();
         });
}

void KAlphaImage::rotateBy(double degrees)
{
    turn([&] { KImage::rotateBy(degrees); },
         [&](KImage& image) {
             bool isMask = &image == mask.get();
             if (isMask)
                 image.invert();
             image.rotateBy(degrees);
             if (isMask)
                 image.invert();
         });
}

void KAlphaImage::takeFileAlpha(std::vector<uint8_t>& alpha, int32_t width, int32_t height)
{
    alphaPlane = new KImage(KGraphicSize(int16_t(width), int16_t(height)));
    KGraphicDevice& plane = alphaPlane->getDevice();
    KPixelBuffer pixels;
    if (!plane.beginPixelAccess(pixels)) {
        alphaPlane.clear();
        return;
    }
    for (int32_t y = 0; y < height; ++y) {
        uint32_t* row = pixels.row(y);
        for (int32_t x = 0; x < width; ++x) {
            uint32_t a = alpha[size_t(y) * size_t(width) + size_t(x)];
            row[x] = (a << 16) | (a << 8) | a;
        }
    }
    plane.endPixelAccess(KWideRectangle(0, 0, width, height));
}

// --- Mask ------------------------------------------------------------------

void KAlphaImage::setMask(KImage& image)
{
    disposeNativeAlpha();
    mask = image;
    rebuildNativeAlpha();
}

void KAlphaImage::clearMask()
{
    if (!mask)
        return;
    disposeNativeAlpha();
    mask.clear();
    rebuildNativeAlpha();
}

// --- Native alpha ----------------------------------------------------------

void KAlphaImage::disposeNativeAlpha() { nativeAlpha.clear(); }

void KAlphaImage::rebuildNativeAlpha()
{
    nativeAlpha.clear();
    if (!hasImage() || (!mask && !alphaPlane))
        return;
    KPixelBuffer image, maskPixels, planePixels, out;
    if (!device->beginPixelAccess(image))
        return;
    bool useMask = mask && mask->getDevice().beginPixelAccess(maskPixels);
    bool usePlane = alphaPlane && alphaPlane->getDevice().beginPixelAccess(planePixels);
    KNativeDevice* native = KNativeDevice::createImage(image.width, image.height, KNativeDevice::Format::Argb32);
    if (!native || !native->beginPixels(out)) {
        delete native;
        return;
    }
    // A mask or plane of another size is sampled at the nearest pixel.
    auto sampleGrey = [](const KPixelBuffer& grey, int32_t x, int32_t y, const KPixelBuffer& size) -> uint32_t {
        int32_t gx = int32_t(int64_t(x) * grey.width / size.width);
        int32_t gy = int32_t(int64_t(y) * grey.height / size.height);
        return (*grey.at(gx, gy) >> 8) & 0xFF;
    };
    for (int32_t y = 0; y < image.height; ++y) {
        const uint32_t* source = image.row(y);
        uint32_t* target = out.row(y);
        for (int32_t x = 0; x < image.width; ++x) {
            uint32_t alpha = useMask ? 255 - sampleGrey(maskPixels, x, y, image) : 255;
            if (!usePlane) {
                target[x] = KPixelOps::premultiply(source[x], uint8_t(alpha));
                continue;
            }
            // A file's see-through parts were laid over white when read:
            // c' = c·a + 255·(1 - a), so the premultiplied c·a is c' less
            // the white, 255 - a.
            uint32_t a = sampleGrey(planePixels, x, y, image);
            uint32_t premultiplied = 0;
            for (int shift = 0; shift <= 16; shift += 8) {
                uint32_t c = (source[x] >> shift) & 0xFF;
                uint32_t ca = c > 255 - a ? c - (255 - a) : 0;
                premultiplied |= KPixelOps::divide255(std::min(ca, a) * alpha) << shift;
            }
            target[x] = premultiplied | (KPixelOps::divide255(a * alpha) << 24);
        }
    }
    native->endPixels(KWideRectangle(0, 0, image.width, image.height));
    nativeAlpha = new KGraphicDevice();
    nativeAlpha->attachNativeDevice(native);
    builtImage = device->getChangeCount();
    builtMask = mask ? mask->getDevice().getChangeCount() : 0;
    builtPlane = alphaPlane ? alphaPlane->getDevice().getChangeCount() : 0;
}

void KAlphaImage::ensureNativeAlpha()
{
    if (!mask && !alphaPlane) {
        nativeAlpha.clear();
        return;
    }
    bool stale = !nativeAlpha || builtImage != device->getChangeCount()
                 || (mask && builtMask != mask->getDevice().getChangeCount())
                 || (alphaPlane && builtPlane != alphaPlane->getDevice().getChangeCount());
    if (stale)
        rebuildNativeAlpha();
}

// --- Drawing ---------------------------------------------------------------

uint8_t KAlphaImage::constantAlpha() const
{
    // Not a number counts as opaque.
    double t = transparency >= 0.0 ? std::min(transparency, 1.0) : 0.0;
    return uint8_t(255 - int32_t(t * 255.0));
}

KWideRectangle KAlphaImage::maskSource(const KGraphicRectangle& source) const
{
    KGraphicRectangle maskBounds = mask->getBounds();
    if (maskBounds.getSize() == bounds.getSize() || bounds.isEmpty())
        return source.toWide();
    auto scale = [](int32_t v, int32_t to, int32_t from) { return int32_t(int64_t(v) * to / from); };
    int32_t left = scale(source.x, maskBounds.width, bounds.width);
    int32_t top = scale(source.y, maskBounds.height, bounds.height);
    int32_t right = scale(source.getRight(), maskBounds.width, bounds.width);
    int32_t bottom = scale(source.getBottom(), maskBounds.height, bounds.height);
    KWideRectangle r;
    r.setCorners(left, top, right, bottom);
    return r;
}

void KAlphaImage::drawRegion(KGraphicDevice& target, const KGraphicRectangle& source,
                             const KGraphicRectangle& destination)
{
    if (!hasImage() || destination.isEmpty())
        return;
    bool masked = mask && mask->hasImage();
    if (masked && !target.hasPixelAccess()) {
        // Raster operations need the target's pixels; a print job gets the
        // same picture composited from the premultiplied form.
        ensureNativeAlpha();
        if (nativeAlpha)
            nativeAlpha->blendTo(target, source.toWide(), destination.toWide(),
                                 blendMode == Masked ? 255 : constantAlpha());
        return;
    }
    if (blendMode == Masked) {
        if (masked)
            drawMasked(target, source, destination);
        else
            KImage::drawRegion(target, source, destination);
        return;
    }
    uint8_t alpha = constantAlpha();
    if (alpha == 0)
        return;
    if (masked) {
        drawMaskedBlended(target, source, destination);
        return;
    }
    if (blendMode == PerPixel) {
        ensureNativeAlpha();
        if (nativeAlpha) {
            nativeAlpha->blendTo(target, source.toWide(), destination.toWide(), alpha);
            return;
        }
    }
    device->blendTo(target, source.toWide(), destination.toWide(), alpha);
}

void KAlphaImage::drawMasked(KGraphicDevice& target, const KGraphicRectangle& source,
                             const KGraphicRectangle& destination)
{
    mask->getDevice().rasterCopyTo(target, maskSource(source), destination.toWide(), KPixelOps::RasterOp::MergePaint);
    device->rasterCopyTo(target, source.toWide(), destination.toWide(), KPixelOps::RasterOp::And);
}

void KAlphaImage::drawMaskedBlended(KGraphicDevice& target, const KGraphicRectangle& source,
                                    const KGraphicRectangle& destination)
{
    // The masked picture is composed on a copy of the visible part of the
    // destination, which is then blended back.
    KWideRectangle visible = destination.toWide();
    KWideRectangle reachable = target.getClip().getBounds();
    reachable.intersectWith(target.getBounds().toWide());
    visible.intersectWith(reachable);
    if (visible.isEmpty())
        return;
    KImagePtr work(new KImage(KGraphicSize(int16_t(visible.width), int16_t(visible.height))));
    if (!work->hasImage())
        return;
    KGraphicDevice& workDevice = work->getDevice();
    KWideRectangle whole(0, 0, visible.width, visible.height);
    target.copyTo(workDevice, visible.toGraphic(), whole.toGraphic());
    KWideRectangle shifted = destination.toWide();
    shifted.offset(-visible.x, -visible.y);
    mask->getDevice().rasterCopyTo(workDevice, maskSource(source), shifted, KPixelOps::RasterOp::MergePaint);
    device->rasterCopyTo(workDevice, source.toWide(), shifted, KPixelOps::RasterOp::And);
    workDevice.blendTo(target, whole, visible, constantAlpha());
}

void KAlphaImage::flatten(KGraphicDevice& target, const KGraphicRectangle& source, const KGraphicRectangle& destination)
{
    {
        KGraphicStateGuard guard(target);
        target.setPenMode(KGraphicDeviceState::CopyForeground);
        target.fillRectangle(destination, KColor(KColor::Black));
    }
    double saved = transparency;
    transparency = 0.0;
    drawRegion(target, source, destination);
    transparency = saved;
}

// --- The class stream ------------------------------------------------------

void KAlphaImage::writeToFile(KFile& file, int32_t)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    KImage::writeToFile(file, 1);
    // The mask is written as a plain image whatever its class, since the
    // reader makes a plain image of it.
    KImagePtr maskImage = mask ? mask : KImagePtr(new KImage());
    maskImage->KImage::writeToFile(file, 1);
    hotSpot.writeToFile(file, 1);
    file.writeShort(int16_t(blendMode));
    file.writeDouble(transparency);
    if (alphaPlane) {
        writer.newSection(2);
        alphaPlane->KImage::writeToFile(file, 1);
    }
    writer.end();
}

bool KAlphaImage::readRecord(KFile& file)
{
    disposeNativeAlpha();
    alphaPlane.clear();
    mask.clear();
    bool read = KGraphicsStreams::readSections(
        file, classRecord,
        { { 1, [&] { return readMainPayload(file); } }, { 2, [&] { return readAlphaPlane(file); } } });
    if (!read) {
        mask.clear();
        alphaPlane.clear();
        dispose();
    }
    rebuildNativeAlpha();
    return read;
}

void KAlphaImage::readFromFile(KFile& file) { readRecord(file); }

bool KAlphaImage::readMainPayload(KFile& file)
{
    if (!KImage::readRecord(file))
        return false;
    KImagePtr maskImage(new KImage());
    KGraphicPoint spot;
    if (!maskImage->KImage::readRecord(file) || !spot.readRecord(file))
        return false;
    int16_t mode = file.readShort();
    double newTransparency = file.readDouble();
    if (file.getError())
        return false;
    // A mask record without a bitmap stands for no mask.
    if (maskImage->hasImage())
        mask = maskImage;
    hotSpot = spot;
    blendMode = mode;
    transparency = newTransparency >= 0.0 ? std::min(newTransparency, 1.0) : 0.0;
    return true;
}

bool KAlphaImage::readAlphaPlane(KFile& file)
{
    KImagePtr plane(new KImage());
    if (!plane->KImage::readRecord(file))
        return false;
    if (plane->hasImage())
        alphaPlane = plane;
    return true;
}
