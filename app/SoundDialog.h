#pragma once

#include "app/ElementDialog.h"
#include "kernel/KFileReference.h"
#include "kmultimedia/KMultimediaForward.h"

class KButtonNativeControl;
class KCheckBoxNativeControl;
class KSliderNativeControl;
class KStaticTextNativeControl;

// "Sound": the sound file, taken with "Import" (copied into the project's
// "Media") or made with "Record", "Play" and "Stop" to hear it as the
// controls stand, "Wait Until Finished" and the volume.
//
// An untitled project has no "Media" yet: the element then refers to the
// file where it is, and saving the project collects it.
class SoundDialog : public ElementDialog {
    K_DECLARE_CLASS(SoundDialog)
public:
    static constexpr int32_t kWidth = 420;
    static constexpr int32_t kHeight = 200;

    SoundDialog();
    ~SoundDialog() override;

    KEventReturn doControlAction(KControlActionEvent& event) override;

    // The file the dialog holds now; empty when none was chosen.
    const KFileReference& getFile() const { return file; }
    // Takes a file the user chose or recorded: a sound, brought into the
    // project's "Media". False, after telling, when it was refused.
    bool takeFile(const KFileReference& chosen);
    void importFile();
    void recordSound();
    void play();
    void stopPlaying();
    bool getWaitForEnd() const;
    int32_t getVolumePosition() const;
    // The sound that plays the file to try it, while the dialog has one.
    KSound* getTrialSound() const;

protected:
    const char* elementClassName() const override { return "StylusSound"; }
    bool takesElement(const TapeObject& candidate) const override;
    void makeControls() override;
    KString refusal() const override;
    void applyValues() override;
    void stopTrying() override;

private:
    void showFile();
    KPath soundPath() const;

    KFileReference file;
    KSoundPtr trial;
    KPtr<KStaticTextNativeControl> fileText;
    KPtr<KButtonNativeControl> importButton;
    KPtr<KButtonNativeControl> recordButton;
    KPtr<KButtonNativeControl> playButton;
    KPtr<KButtonNativeControl> stopButton;
    KPtr<KCheckBoxNativeControl> waitBox;
    KPtr<KSliderNativeControl> volumeSlider;
};

// Brings a file the user chose into the media folder (see
// importMediaFile); without a folder the file stays where it is. Tells
// "File already in project" when the folder held the same file already.
// False, after telling the dialog's title and why, when it failed.
bool importIntoMedia(const KFileReference& chosen, KDirectory* media, const KString& title, KFileReference& imported);
