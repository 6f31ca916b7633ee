#pragma once

#include "app/ElementDialog.h"
#include "kernel/KFileReference.h"
#include "tape/TapeForward.h"

class ImageTapePage;
class KButtonNativeControl;
class KCheckBoxNativeControl;
class KColourSwatchNativeControl;
class KPictureNativeControl;
class KPopUpListNativeControl;
class KRadioGroupNativeControl;
class KStaticTextNativeControl;
class KTimer;

// "Page Transition": the effect, what the new page is made of (a colour,
// or a picture imported into "Media" and stretched over the page), and
// whether the actors leave the stage. A small picture beside the controls
// plays the effect as chosen, again at every change.
class WipeOutDialog : public ElementDialog {
    K_DECLARE_CLASS(WipeOutDialog)
public:
    static constexpr int32_t kWidth = 540;
    static constexpr int32_t kHeight = 280;
    static constexpr int16_t kPreviewWidth = 160;
    static constexpr int16_t kPreviewHeight = 120;
    // The preview's steps follow the tape's tick.
    static constexpr int32_t kPreviewTick = 20;

    WipeOutDialog();
    ~WipeOutDialog() override;

    KEventReturn doControlAction(KControlActionEvent& event) override;
    void timerFired(KTimer& timer) override;

    const KFileReference& getFile() const { return file; }
    bool takeFile(const KFileReference& chosen);
    // Whether the preview still plays its effect.
    bool isPreviewPlaying() const;

protected:
    const char* elementClassName() const override { return "WipeOut"; }
    bool takesElement(const TapeObject& candidate) const override;
    void makeControls() override;
    KString refusal() const override;
    void applyValues() override;
    void stopTrying() override;
    bool drawsOnPage() const override { return true; }

private:
    void importFile();
    void showFile();
    void copyValuesInto(WipeOut& transition) const;
    bool withImage() const;
    // Plays the effect in the picture from the page before it.
    void playPreview();
    void showPreviewFrame();

    KFileReference file;
    KPtr<KPopUpListNativeControl> effectList;
    KPtr<KRadioGroupNativeControl> withGroup;
    KPtr<KColourSwatchNativeControl> colourSwatch;
    KPtr<KStaticTextNativeControl> fileText;
    KPtr<KButtonNativeControl> importButton;
    KPtr<KCheckBoxNativeControl> actorsBox;
    KPtr<KPictureNativeControl> preview;
    TapePtr previewTape;
    KPtr<ImageTapePage> previewPage;
    WipeOutPtr previewEffect;
    KPtr<KTimer> previewTimer;
};
