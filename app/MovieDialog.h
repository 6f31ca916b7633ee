#pragma once

#include "app/ElementDialog.h"
#include "kernel/KFileReference.h"
#include "kmultimedia/KMultimediaForward.h"

class KButtonNativeControl;
class KCheckBoxNativeControl;
class KImage;
class KPictureNativeControl;
class KStaticTextNativeControl;

// "Movie": the film's file (imported into "Media"), where and how large it
// stands ("Center Movie", "Set Original Size"), whether a click ends it
// ("Can Be Stopped") and its volume. "Play" tries it in the picture beside
// the controls; it stops when the dialog closes.
//
// A new movie takes its film's own size, shrunk to fit the page, in the
// middle of the page.
class MovieDialog : public ElementDialog {
    K_DECLARE_CLASS(MovieDialog)
public:
    static constexpr int32_t kWidth = 520;
    static constexpr int32_t kHeight = 260;
    static constexpr int16_t kPreviewWidth = 160;
    static constexpr int16_t kPreviewHeight = 120;

    MovieDialog();
    ~MovieDialog() override;

    KEventReturn doControlAction(KControlActionEvent& event) override;

    const KFileReference& getFile() const { return file; }
    // Takes a file as "Import" does; false, after telling, when it is no
    // movie or cannot be copied.
    bool takeFile(const KFileReference& chosen);
    KMovie* getTrialMovie() const;

protected:
    const char* elementClassName() const override { return "StylusMovie"; }
    bool takesElement(const TapeObject& candidate) const override;
    void makeControls() override;
    KString refusal() const override;
    void applyValues() override;
    void stopTrying() override;
    bool drawsOnPage() const override { return true; }

private:
    void importFile();
    void showFile();
    void showPoster();
    void play();
    KPath moviePath() const;
    // The film's own size, or empty when it cannot be opened.
    KGraphicSize naturalSize() const;

    KFileReference file;
    KMoviePtr trial;
    KImagePtr screen;
    KPtr<KStaticTextNativeControl> fileText;
    KPtr<KButtonNativeControl> importButton;
    KPtr<KButtonNativeControl> playButton;
    KPtr<KButtonNativeControl> stopButton;
    KPtr<KCheckBoxNativeControl> centreBox;
    KPtr<KCheckBoxNativeControl> originalSizeBox;
    KPtr<KCheckBoxNativeControl> stoppableBox;
    KPtr<KSliderNativeControl> volumeSlider;
    KPtr<KPictureNativeControl> preview;
};
