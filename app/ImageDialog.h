#pragma once

#include "app/ElementDialog.h"
#include "kernel/KFileReference.h"

class KButtonNativeControl;
class KCheckBoxNativeControl;
class KPictureNativeControl;
class KStaticTextNativeControl;
class StylusImage;

// "Image": the picture's file (imported into "Media"), where and how large
// it stands ("Center Image", "Set Original Size"), its mirrors, and white
// made transparent with a hard or blurred edge at a threshold. A picture
// beside the controls shows the image as the options make it, at once.
//
// A new image takes its file's own size, shrunk to fit the page, in the
// middle of the page.
class ImageDialog : public ElementDialog {
    K_DECLARE_CLASS(ImageDialog)
public:
    static constexpr int32_t kWidth = 520;
    static constexpr int32_t kHeight = 330;
    static constexpr int16_t kPreviewWidth = 160;
    static constexpr int16_t kPreviewHeight = 120;

    ImageDialog();
    ~ImageDialog() override;

    KEventReturn doControlAction(KControlActionEvent& event) override;

    // The file the dialog will give the image.
    const KFileReference& getFile() const { return file; }
    // Takes a file as "Import" does; false, after telling, when it is no
    // picture or cannot be copied.
    bool takeFile(const KFileReference& chosen);
    // The slider's 0 to 100 and the element's threshold.
    static int32_t thresholdOfSlider(double position);
    static double sliderOfThreshold(int32_t threshold);

protected:
    const char* elementClassName() const override { return "StylusImage"; }
    bool takesElement(const TapeObject& candidate) const override;
    void makeControls() override;
    KString refusal() const override;
    void applyValues() override;
    bool drawsOnPage() const override { return true; }

private:
    void importFile();
    void showFile();
    // The element as the controls make it, for the preview and for OK.
    void copyValuesInto(StylusImage& image) const;
    void showPreview();
    KGraphicSize naturalSize() const;

    KFileReference file;
    KPtr<KStaticTextNativeControl> fileText;
    KPtr<KButtonNativeControl> importButton;
    KPtr<KCheckBoxNativeControl> centreBox;
    KPtr<KCheckBoxNativeControl> originalSizeBox;
    KPtr<KCheckBoxNativeControl> flipXBox;
    KPtr<KCheckBoxNativeControl> flipYBox;
    KPtr<KCheckBoxNativeControl> transparentBox;
    KPtr<KCheckBoxNativeControl> blurBox;
    KPtr<KSliderNativeControl> thresholdSlider;
    KPtr<KPictureNativeControl> preview;
};
