#pragma once

#include "graphics/KGraphicPoint.h"
#include "graphics/KImage.h"

// An image with a mask, a hot spot and a transparency: what sprites and
// page transitions draw with.
//
// The mask is black where the image shows and white where it lets the
// target through (the image is white there too). `blendMode` 0 draws the
// mask and the image with raster operations; 1 blends the result with the
// constant alpha of `transparency`; 2 blends by per-pixel alpha (from a
// file's own transparency), or, with a mask, as 1.
class KAlphaImage : public KImage {
    K_DECLARE_CLASS(KAlphaImage)
public:
    enum BlendMode : int32_t { Masked = 0, Constant = 1, PerPixel = 2 };

    KAlphaImage();
    explicit KAlphaImage(const KGraphicSize& size);
    KAlphaImage(const KAlphaImage&) = delete;
    KAlphaImage& operator=(const KAlphaImage&) = delete;
    ~KAlphaImage() override;

    // A new image with the same pixels, mask and settings.
    KThing* deepCopy() const override;

    void drawRegion(KGraphicDevice& target, const KGraphicRectangle& source,
                    const KGraphicRectangle& destination) override;

    // The record: the whole KImage record, the mask as a whole KImage record
    // (an empty one when there is none), the hot spot as a KGraphicPoint
    // record, the blend mode in 16 bits and the transparency as a double.
    // The file's own transparency, when the image has one, follows in
    // section 2 as a KImage record, which older readers skip.
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    using KImage::writeToFile;
    // False when the record was damaged; the image is empty then.
    bool readRecord(KFile& file);

    // Loading and turning go through three steps: the derived alpha is
    // dropped, the image operation runs (on the mask as well), the alpha is
    // built again.
    void setSize(const KGraphicSize& size) override;
    bool createFromPathScaled(const KString& path, const KGraphicSize& size) override;
    bool createFromPath(const KString& path) override;
    bool createFromFileBytes(const void* bytes, size_t size) override;
    void flipHorizontal() override;
    void flipVertical() override;
    void rotateLeft() override;
    void rotateRight() override;
    void rotateHalf() override;
    void shearHorizontal(double factor) override;
    void rotateBy(double degrees) override;

    virtual void setMask(KImage& image);
    virtual void clearMask();
    // Reads the image, then a new mask image from the second file.
    virtual bool createFromFiles(const KFileReference& image, const KFileReference& mask);
    virtual bool createFromPaths(const KString& imagePath, const KString& maskPath);
    // Draws opaquely: the destination is first filled black, then the image
    // is drawn through its mask with no transparency.
    virtual void flatten(KGraphicDevice& target, const KGraphicRectangle& source, const KGraphicRectangle& destination);

    KImage* getMask() const { return mask.get(); }
    bool hasMask() const { return mask.get() != nullptr; }
    const KGraphicPoint& getHotSpot() const { return hotSpot; }
    void setHotSpot(const KGraphicPoint& p) { hotSpot = p; }
    int32_t getBlendMode() const { return blendMode; }
    void setBlendMode(int32_t mode) { blendMode = mode; }
    double getTransparency() const { return transparency; }
    void setTransparency(double value) { transparency = value; }
    // Whether the image carries per-pixel alpha of its own (from its file).
    bool hasAlphaPlane() const { return alphaPlane.get() != nullptr; }

    // The premultiplied ARGB32 form of the image and its mask (or its own
    // alpha), for blending; rebuilt when either has changed since.
    void rebuildNativeAlpha();
    void disposeNativeAlpha();

protected:
    void takeFileAlpha(std::vector<uint8_t>& alpha, int32_t width, int32_t height) override;

private:
    template<class Own, class Other>
    void turn(Own&& own, Other&& other);
    bool readMainPayload(KFile& file);
    bool readAlphaPlane(KFile& file);
    void ensureNativeAlpha();
    uint8_t constantAlpha() const;
    KWideRectangle maskSource(const KGraphicRectangle& source) const;
    void drawMasked(KGraphicDevice& target, const KGraphicRectangle& source, const KGraphicRectangle& destination);
    void drawMaskedBlended(KGraphicDevice& target, const KGraphicRectangle& source,
                           const KGraphicRectangle& destination);

    KImagePtr mask;
    KGraphicPoint hotSpot;
    KGraphicDevicePtr nativeAlpha;
    int32_t blendMode = Masked;
    double transparency = 0.0;
    // The file's own transparency as a grey image: white opaque.
    KImagePtr alphaPlane;
    // What nativeAlpha was built from.
    uint32_t builtImage = 0;
    uint32_t builtMask = 0;
    uint32_t builtPlane = 0;
};
