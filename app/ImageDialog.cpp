#include "app/ImageDialog.h"

#include "app/ProjectFiles.h"
#include "app/SoundDialog.h"
#include "app/UiText.h"
#include "graphics/KAlphaImage.h"
#include "graphics/KColor.h"
#include "graphics/KImage.h"
#include "kernel/KClass.h"
#include "kernel/KPath.h"
#include "tape/StylusImage.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/TapeMediaImport.h"
#include "windowing/KAlert.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KCheckBoxNativeControl.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KDialogHandler.h"
#include "windowing/KPictureNativeControl.h"
#include "windowing/KSliderNativeControl.h"
#include "windowing/KStaticTextNativeControl.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int32_t kImportId = 20;
constexpr int32_t kCentreId = 21;
constexpr int32_t kOriginalSizeId = 22;
constexpr int32_t kFlipXId = 23;
constexpr int32_t kFlipYId = 24;
constexpr int32_t kTransparentId = 25;
constexpr int32_t kBlurId = 26;
constexpr int32_t kThresholdId = 27;
constexpr int32_t kPreviewId = 28;
constexpr double kThresholdStep = 655.35;
constexpr int16_t kChequer = 8;

// A picture's own size, or empty when the file is no picture.
KGraphicSize sizeOfPicture(const KPath& path)
{
    if (path.isEmpty())
        return KGraphicSize();
    KImage picture;
    if (!picture.createFromPath(path.getNativeText()) || !picture.hasImage())
        return KGraphicSize();
    KGraphicRectangle bounds = picture.getBounds();
    return KGraphicSize(bounds.width, bounds.height);
}

// Transparent parts show as a grey chequer behind the picture.
void fillChequer(KGraphicDevice& device, const KGraphicRectangle& area)
{
    device.fillRectangle(area, KColor(KColor::White));
    for (int32_t y = 0; y < area.height; y += kChequer) {
        for (int32_t x = (y / kChequer) % 2 * kChequer; x < area.width; x += 2 * kChequer)
            device.fillRectangle(KGraphicRectangle(int16_t(area.x + x), int16_t(area.y + y), kChequer, kChequer),
                                 KColor(0xCC00, 0xCC00, 0xCC00));
    }
}

} // namespace

K_DEFINE_CLASS(ImageDialog, ElementDialog)

ImageDialog::ImageDialog()
{
    setTitle(uiText("Image"));
    setBounds(KGraphicRectangle(140, 140, kWidth, kHeight));
}

ImageDialog::~ImageDialog() = default;

bool ImageDialog::takesElement(const TapeObject& candidate) const
{
    return dynamic_cast<const StylusImage*>(&candidate) != nullptr;
}

int32_t ImageDialog::thresholdOfSlider(double position)
{
    if (!std::isfinite(position))
        return StylusImage::kDefaultThreshold;
    return int32_t(std::lround(std::clamp(position, 0.0, 100.0) * kThresholdStep));
}

double ImageDialog::sliderOfThreshold(int32_t threshold)
{
    return std::round(std::clamp(threshold, 0, 65535) / kThresholdStep);
}

void ImageDialog::makeControls()
{
    const auto& image = static_cast<const StylusImage&>(*getElement());
    file = image.getImageFile();
    fileText = kAdopt(new KStaticTextNativeControl(KString(), KWideRectangle(16, 16, 300, 20)));
    addControl(*fileText);
    importButton = kAdopt(new KButtonNativeControl(kImportId, uiText("Import"), KWideRectangle(16, 44, 100, 30)));
    addControl(*importButton);
    bool fresh = isNewElement();
    centreBox = addCheckBox(kCentreId, uiText("Center Image"), 86, fresh);
    originalSizeBox = addCheckBox(kOriginalSizeId, uiText("Set Original Size"), 112, fresh);
    flipXBox = addCheckBox(kFlipXId, uiText("Flip Horizontal"), 138, image.getFlipX());
    flipYBox = addCheckBox(kFlipYId, uiText("Flip Vertical"), 164, image.getFlipY());
    transparentBox = addCheckBox(kTransparentId, uiText("Transparent White"), 190, image.getTransparentWhite());
    blurBox = addCheckBox(kBlurId, uiText("Blur Filter"), 216, image.getBlurFilter());
    addLabel(uiText("Threshold"), 16, 248, 100);
    thresholdSlider = kAdopt(new KSliderNativeControl(kThresholdId, KWideRectangle(120, 244, 200, 24), 0, 100,
                                                      sliderOfThreshold(image.getThreshold())));
    addControl(*thresholdSlider);
    preview = kAdopt(new KPictureNativeControl(kPreviewId, KWideRectangle(340, 44, kPreviewWidth, kPreviewHeight)));
    addControl(*preview);
    showFile();
}

void ImageDialog::showFile()
{
    if (fileText)
        fileText->setText(file.getPath().isEmpty() ? uiText("No image file") : file.getObjectName());
    showPreview();
}

void ImageDialog::copyValuesInto(StylusImage& image) const
{
    image.setImageFile(file);
    image.setFlipX(flipXBox->isChecked());
    image.setFlipY(flipYBox->isChecked());
    image.setTransparentWhite(transparentBox->isChecked());
    image.setBlurFilter(blurBox->isChecked());
    image.setThreshold(thresholdOfSlider(thresholdSlider->getValue()));
}

// The picture as OK would make it, fitted into the preview over a chequer.
void ImageDialog::showPreview()
{
    if (!preview)
        return;
    KImage shown(KGraphicSize(kPreviewWidth, kPreviewHeight));
    KGraphicRectangle whole(0, 0, kPreviewWidth, kPreviewHeight);
    fillChequer(shown.getDevice(), whole);
    StylusImagePtr trial(new StylusImage());
    copyValuesInto(*trial);
    Tape* tape = getTapeEdited();
    KFileReference where(tapeMediaPath(tape, file));
    trial->setImageFile(where);
    if (KAlphaImagePtr picture = trial->makePicture()) {
        KGraphicRectangle bounds = picture->getBounds();
        KGraphicSize fitted = fittedSize(KGraphicSize(bounds.width, bounds.height), whole.getSize());
        KGraphicRectangle place(0, 0, fitted.width, fitted.height);
        place.centreIn(whole);
        picture->drawIn(shown.getDevice(), place);
    }
    preview->setPicture(shown);
}

KGraphicSize ImageDialog::naturalSize() const { return sizeOfPicture(tapeMediaPath(getTapeEdited(), file)); }

bool ImageDialog::takeFile(const KFileReference& chosen)
{
    // A file that is no picture is refused before anything is copied.
    if (sizeOfPicture(chosen.getPath()).isEmpty()) {
        alert(getTitle(), uiText("Unsupported Format!"));
        return false;
    }
    KFileReference imported;
    if (!importIntoTapeMedia(chosen, imported))
        return false;
    file = imported;
    showFile();
    return true;
}

void ImageDialog::importFile()
{
    KFileReference chosen;
    if (askImportFile(chosen))
        takeFile(chosen);
}

KEventReturn ImageDialog::doControlAction(KControlActionEvent& event)
{
    KThing* source = event.getSource();
    if (importButton && source == importButton.get()) {
        importFile();
        return 1;
    }
    KEventReturn handled = ElementDialog::doControlAction(event);
    for (KControl* option : { static_cast<KControl*>(flipXBox.get()), static_cast<KControl*>(flipYBox.get()),
                              static_cast<KControl*>(transparentBox.get()), static_cast<KControl*>(blurBox.get()),
                              static_cast<KControl*>(thresholdSlider.get()) }) {
        if (option && source == option) {
            showPreview();
            return 1;
        }
    }
    return handled;
}

KString ImageDialog::refusal() const
{
    if (file.getPath().isEmpty())
        return uiText("Please Select An Image File.");
    return KString();
}

void ImageDialog::applyValues()
{
    auto& image = static_cast<StylusImage&>(*getElement());
    copyValuesInto(image);
    image.setBounds(placeOnPage(image.getBounds(), naturalSize(), editedPageSize(), originalSizeBox->isChecked(),
                                centreBox->isChecked()));
}
