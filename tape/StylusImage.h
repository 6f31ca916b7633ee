#pragma once

#include "graphics/KAlphaImage.h"
#include "kernel/KFileReference.h"
#include "tape/TapeGraphicObject.h"

// An image from a file, put on the page in its bounds. The element keeps a
// reference to the file, not its pixels: the picture is read each time it
// is drawn. White (or what the threshold counts as white) can be made
// transparent, with a hard or a blurred edge, and the picture can be
// mirrored either way. A file that is missing or cannot be read shows as a
// black rectangle.
class StylusImage : public TapeGraphicObject {
    K_DECLARE_CLASS(StylusImage)
public:
    static constexpr int32_t kDefaultThreshold = 65535;

    StylusImage();
    StylusImage(const StylusImage& other);
    ~StylusImage() override;

    KThing* deepCopy() const override;
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    // An image costs one tick of the tape: it is drawn and lets go.
    void startPlaying() override;
    void playStep() override;
    void stopPlaying() override;
    void drawOn(KGraphicDevice& device, const KGraphicRectangle& source, const KGraphicRectangle& target) override;
    void drawHighlighted(KGraphicDevice& device, const KGraphicRectangle& source,
                         const KGraphicRectangle& target) override;
    void drawSilhouette(KGraphicDevice& device, const KGraphicRectangle& from, const KGraphicRectangle& to) override;
    void mirror(bool horizontal, int16_t centre) override;
    void redrawOver() override;
    bool findMissingMedia(KDirectory& directory, KDirectory* second) override;
    void collectMedia(KDirectory& from, KDirectory& to) override;
    bool replaceMedia(const KFileReference& oldFile, const KFileReference& newFile) override;
    void addMediaName(KStringBag& names) override;
    bool usesMediaNamed(const KString& name) override;

    const KFileReference& getImageFile() const { return imageFile; }
    void setImageFile(const KFileReference& file);
    bool getTransparentWhite() const { return transparentWhite; }
    void setTransparentWhite(bool value);
    bool getBlurFilter() const { return blurFilter; }
    void setBlurFilter(bool value);
    int32_t getThreshold() const { return threshold; }
    void setThreshold(int32_t value);
    bool getFlipX() const { return flipX; }
    void setFlipX(bool value);
    bool getFlipY() const { return flipY; }
    void setFlipY(bool value);

    // Where the file is read from now (see tapeMediaPath).
    KPath getImagePath() const;
    // The picture as drawn: read from the file, masked and mirrored. Null
    // when the file is missing or the picture has no size.
    KAlphaImagePtr makePicture() const;

private:
    KImagePtr makeMask(KImage& picture) const;
    void drawInto(KGraphicDevice& device, const KGraphicRectangle& destination);
    void resetFields();

    KFileReference imageFile;
    bool transparentWhite = false;
    bool blurFilter = false;
    int32_t threshold = kDefaultThreshold;
    bool flipX = false;
    bool flipY = false;
};
