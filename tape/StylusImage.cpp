#include "tape/StylusImage.h"

#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicDeviceState.h"
#include "graphics/KGraphicStateGuard.h"
#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KPath.h"
#include "tape/Tape.h"
#include "tape/TapeMediaImport.h"
#include "tape/TapePage.h"

#include <algorithm>

K_DEFINE_CLASS(StylusImage, TapeGraphicObject)

StylusImage::StylusImage() { setType(ImageType); }

StylusImage::StylusImage(const StylusImage& other)
    : TapeGraphicObject(other)
    , imageFile(other.imageFile)
    , transparentWhite(other.transparentWhite)
    , blurFilter(other.blurFilter)
    , threshold(other.threshold)
    , flipX(other.flipX)
    , flipY(other.flipY)
{
    setType(ImageType);
}

StylusImage::~StylusImage() = default;

KThing* StylusImage::deepCopy() const { return new StylusImage(*this); }

// --- Fields ----------------------------------------------------------------------

void StylusImage::setImageFile(const KFileReference& file)
{
    imageFile = file;
    noteChanged();
}

void StylusImage::setTransparentWhite(bool value)
{
    transparentWhite = value;
    noteChanged();
}

void StylusImage::setBlurFilter(bool value)
{
    blurFilter = value;
    noteChanged();
}

void StylusImage::setThreshold(int32_t value)
{
    threshold = value;
    noteChanged();
}

void StylusImage::setFlipX(bool value)
{
    flipX = value;
    noteChanged();
}

void StylusImage::setFlipY(bool value)
{
    flipY = value;
    noteChanged();
}

KPath StylusImage::getImagePath() const { return tapeMediaPath(getTape(), imageFile); }

// --- The picture -------------------------------------------------------------------

// White, as far as the threshold counts it, lets the page through. The
// mask is made from the picture's own pixels, before any mirroring, and is
// mirrored with it.
KImagePtr StylusImage::makeMask(KImage& picture) const
{
    KImagePtr mask(new KImage(picture.getSize()));
    if (!mask->hasImage())
        return KImagePtr();
    KGraphicRectangle whole = picture.getBounds();
    picture.getDevice().copyTo(mask->getDevice(), whole, whole);
    auto level = uint16_t(std::clamp<int32_t>(threshold, 0, 65535));
    if (blurFilter)
        mask->makeBlurredMask(level);
    else
        mask->makeThresholdMask(level);
    return mask;
}

KAlphaImagePtr StylusImage::makePicture() const
{
    KPath path = getImagePath();
    if (path.isEmpty() || !KFileReference(path).doesExist())
        return KAlphaImagePtr();
    KAlphaImagePtr picture(new KAlphaImage());
    if (!picture->createFromPath(path.getNativeText()) || !picture->hasImage() || picture->getBounds().isEmpty())
        return KAlphaImagePtr();
    if (transparentWhite) {
        if (KImagePtr mask = makeMask(*picture)) {
            picture->setMask(*mask);
            picture->setBlendMode(blurFilter ? KAlphaImage::PerPixel : KAlphaImage::Masked);
        }
    }
    if (flipX)
        picture->flipHorizontal();
    if (flipY)
        picture->flipVertical();
    return picture;
}

void StylusImage::drawInto(KGraphicDevice& device, const KGraphicRectangle& destination)
{
    if (KAlphaImagePtr picture = makePicture())
        picture->drawIn(device, destination);
    else
        fillBlack(device, destination);
}

void StylusImage::drawOn(KGraphicDevice& device, const KGraphicRectangle& source, const KGraphicRectangle& target)
{
    drawInto(device, movedLike(getBounds(), source, target));
}

void StylusImage::drawHighlighted(KGraphicDevice& device, const KGraphicRectangle& source,
                                  const KGraphicRectangle& target)
{
    KGraphicRectangle destination = movedLike(getBounds(), source, target);
    drawInto(device, destination);
    KGraphicRectangle frame = destination;
    frame.grow(kHighlightWidth, kHighlightWidth);
    KGraphicStateGuard guard(device);
    device.setPenMode(KGraphicDeviceState::CopyForeground);
    device.setPenSize(kHighlightWidth);
    device.frameRectangle(frame, KColor(KColor::White));
}

// The picture's shape in black: the mask drawn through itself covers what
// the picture covers and leaves the rest. Without a mask the shape is the
// whole rectangle.
void StylusImage::drawSilhouette(KGraphicDevice& device, const KGraphicRectangle& from, const KGraphicRectangle& to)
{
    KGraphicRectangle destination = movedLike(getBounds(), from, to);
    KAlphaImagePtr picture = transparentWhite ? makePicture() : KAlphaImagePtr();
    KImage* mask = picture ? picture->getMask() : nullptr;
    if (!mask || !mask->hasImage()) {
        fillBlack(device, destination);
        return;
    }
    KAlphaImagePtr shape(new KAlphaImage(mask->getSize()));
    if (!shape->hasImage()) {
        fillBlack(device, destination);
        return;
    }
    KGraphicRectangle whole = mask->getBounds();
    mask->getDevice().copyTo(shape->getDevice(), whole, whole);
    shape->setMask(*mask);
    shape->drawIn(device, destination);
}

// The rectangle is reflected as a whole, so that its far edge becomes its
// near one: a picture mirrored with the strokes around it stays beside them.
void StylusImage::mirror(bool horizontal, int16_t centre)
{
    KGraphicRectangle moved = getBounds();
    if (horizontal) {
        flipX = !flipX;
        moved.x = int16_t(2 * centre - moved.x - moved.width);
    } else {
        flipY = !flipY;
        moved.y = int16_t(2 * centre - moved.y - moved.height);
    }
    setBounds(moved);
}

void StylusImage::redrawOver() { }

// --- Playing -----------------------------------------------------------------------

void StylusImage::startPlaying()
{
    Tape* tape = getTape();
    if (!tape)
        return;
    if (TapePage* page = getPage()) {
        KGraphicRectangle bounds = getBounds();
        drawInto(page->getPageDevice(), bounds);
        page->refresh(bounds);
    }
    tape->clearPlayingObject();
}

void StylusImage::playStep() { }

void StylusImage::stopPlaying() { }

// --- Media ---------------------------------------------------------------------------

bool StylusImage::findMissingMedia(KDirectory& directory, KDirectory* second)
{
    bool changed = false;
    bool gaveUp = tapeFindMissingMedia(imageFile, getTape(), directory, second, changed);
    if (changed)
        noteChanged();
    return gaveUp;
}

void StylusImage::collectMedia(KDirectory& from, KDirectory& to)
{
    if (tapeCollectMedia(imageFile, getTape(), from, to))
        noteChanged();
}

bool StylusImage::replaceMedia(const KFileReference& oldFile, const KFileReference& newFile)
{
    if (!tapeMediaRefersTo(getTape(), imageFile, oldFile))
        return false;
    setImageFile(newFile);
    return true;
}

void StylusImage::addMediaName(KStringBag& names) { tapeAddMediaName(imageFile, names); }

bool StylusImage::usesMediaNamed(const KString& name)
{
    return !imageFile.getPath().isEmpty() && imageFile.getObjectName() == name;
}

// --- Persistence -----------------------------------------------------------------

void StylusImage::writeToFile(KFile& file, int32_t version)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    TapeGraphicObject::writeToFile(file, version);
    imageFile.writeToFile(file, version);
    file.writeBool(transparentWhite);
    writer.newSection(2);
    file.writeBool(flipX);
    file.writeBool(flipY);
    writer.newSection(3);
    file.writeBool(blurFilter);
    file.writeLong(threshold);
    writer.end();
}

void StylusImage::resetFields()
{
    imageFile = KFileReference();
    transparentWhite = false;
    blurFilter = false;
    threshold = kDefaultThreshold;
    flipX = false;
    flipY = false;
}

// Sections the file lacks leave their defaults: a document from before
// the blurred mask has no section 3.
void StylusImage::readFromFile(KFile& file)
{
    resetFields();
    auto readMain = [&](int32_t) {
        TapeGraphicObject::readFromFile(file);
        setType(ImageType);
        tapeReadMediaReference(file, imageFile);
        transparentWhite = file.readBool();
    };
    auto readFlips = [&](int32_t) {
        flipX = file.readBool();
        flipY = file.readBool();
    };
    auto readBlur = [&](int32_t) {
        blurFilter = file.readBool();
        threshold = file.readLong();
    };
    KClassReader::readSections(file, classRecord, { { 1, readMain }, { 2, readFlips }, { 3, readBlur } });
    noteChanged();
}

void StylusImage::describe(KJsonWriter& out) const
{
    TapeGraphicObject::describe(out);
    out.objectMember("imageFile", &imageFile);
    out.member("transparentWhite", transparentWhite);
    out.member("blurFilter", blurFilter);
    out.member("threshold", threshold);
    out.member("flipX", flipX);
    out.member("flipY", flipY);
}
