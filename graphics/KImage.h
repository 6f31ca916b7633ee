#pragma once

#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicObject.h"
#include "graphics/KGraphicsForward.h"
#include "kernel/KFileReference.h"
#include "kernel/KString.h"
#include "kernel/KThingPtr.h"

#include <cstddef>
#include <vector>

namespace KNativeImageFile {
struct Picture;
}

// A bitmap that owns an off-screen device: anything that can be drawn on a
// device can be drawn on an image. A new image is black. An image without a
// bitmap (size 0, or a failed load) draws nothing.
class KImage : public KGraphicObject {
    K_DECLARE_CLASS(KImage)
public:
    // The owner value of an image's own device.
    static constexpr int32_t kDeviceOwner = 2;

    KImage();
    explicit KImage(const KGraphicSize& size);
    KImage(const KImage&) = delete;
    KImage& operator=(const KImage&) = delete;
    ~KImage() override;

    // A new image with the same pixels.
    KThing* deepCopy() const override;

    KGraphicRectangle getBounds() const override;
    void drawRegion(KGraphicDevice& target, const KGraphicRectangle& source,
                    const KGraphicRectangle& destination) override;
    void drawIn(KGraphicDevice& target, const KGraphicRectangle& destination) override;
    void drawAt(KGraphicDevice& target, const KGraphicPoint& p) override;

    // The record: the bounds as a whole KGraphicObject record, the length of
    // the bitmap, and the bitmap as a BMP file image; an empty image writes
    // the length 0 alone. A bitmap that cannot be decoded leaves the image
    // empty and the stream behind it; a stream cut short stores its error in
    // the file.
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    // False when the record was damaged; the image is empty then.
    bool readRecord(KFile& file);

    // The second entry creates the bitmap for the bounds when the device has
    // none; the first is kept free.
    virtual void reservedEntry();
    virtual void createNativeSide();
    // A new black bitmap of the size; an empty size (or one too large to
    // allocate) leaves the image empty.
    virtual void setSize(const KGraphicSize& size);
    // Loads the file and stretches it over a bitmap of the size.
    virtual bool createFromFileScaled(const KFileReference& ref, const KGraphicSize& size);
    // The file's extension chooses the format; see createFromPath.
    virtual bool createFromFile(const KFileReference& ref);
    virtual bool createFromPathScaled(const KString& path, const KGraphicSize& size);
    // Loads an image file, the format chosen by the extension. An unknown
    // extension, a file that cannot be read and a declared size beyond the
    // limits are reported as error 57 and leave the image empty.
    virtual bool createFromPath(const KString& path);
    // Reads the bytes of an image file held in memory, of any format that
    // createFromPath reads. False, with the image empty, for anything else;
    // nothing is reported, so callers choose their own message.
    virtual bool createFromFileBytes(const void* bytes, size_t size);
    // The image becomes a mask: white where every channel is at least the
    // threshold (65535: pure white only), black elsewhere; the blurred form
    // softens the edges.
    virtual void makeThresholdMask(uint16_t threshold);
    virtual void makeBlurredMask(uint16_t threshold);
    virtual void smooth();
    // Inverts every pixel; nothing on an empty image.
    virtual void invert();
    virtual void flipHorizontal();
    virtual void flipVertical();
    // Quarter turns exchange the width and the height.
    virtual void rotateLeft();
    virtual void rotateRight();
    virtual void rotateHalf();
    virtual void shearHorizontal(double factor);
    // Counter-clockwise, in degrees, into the bounding box of the result.
    virtual void rotateBy(double degrees);
    // Writes PNG, JPEG, BMP or TIFF by the extension; another extension is
    // error 57. False when the image is empty or the file cannot be written.
    virtual bool writeToPath(const KString& path);
    virtual bool writeToFile(const KFileReference& ref);

    // The image's own device.
    KGraphicDevice& getDevice();
    bool hasImage() const;
    // Drops the bitmap; the image is empty afterwards.
    void dispose();
    KGraphicSize getSize() const { return bounds.getSize(); }
    // The bitmap's native surface; reported as error 18 when there is none.
    KNativeDevice* getNativeImage() const;

    static int32_t liveImages();

protected:
    // A file just read had transparency: one byte a pixel. A plain image
    // has no use for it.
    virtual void takeFileAlpha(std::vector<uint8_t>& alpha, int32_t width, int32_t height);
    // Replaces the bitmap with one of the new size, filled by `fill` from
    // the old one.
    template<class Fill>
    void replacePixels(int32_t width, int32_t height, Fill&& fill);
    // Reads the file into this image; failures are reported as error 57.
    bool load(const KString& path);
    // Makes the decoded picture this image's bitmap; false when no bitmap
    // of its size can be had.
    bool takePicture(KNativeImageFile::Picture& picture);
    // The record's parts.
    bool readPayload(KFile& file);
    void writeBitmap(KFile& file);
    // Decodes the BMP file image into a bitmap of `size`.
    void decodeBitmap(const std::vector<uint8_t>& bytes, const KGraphicSize& size);

    KGraphicDevicePtr device;
};
