#pragma once

#include "app/ElementDialog.h"
#include "kmultimedia/KMultimediaForward.h"

#include <vector>

class KButtonNativeControl;
class KCheckBoxNativeControl;
class KColourSwatchNativeControl;
class KPopUpListNativeControl;
class KSliderNativeControl;

// "Text Settings": how a text element stands on the page and is read
// aloud: "Transparent Background", "Use Speech" with its voice, "Speak" and
// "Stop" to hear it, "Wait Until Finished", the volume, "Highlight Text"
// with its "Highlight Color", and "Use Recording", whose words and times
// "Sound Highlight..." edits. The text itself is typed on the page.
class TextDialogStandard : public ElementDialog {
    K_DECLARE_CLASS(TextDialogStandard)
public:
    static constexpr int32_t kWidth = 520;
    static constexpr int32_t kHeight = 330;
    enum Box : int32_t {
        Transparent = 0,
        UseSpeech = 1,
        WaitForEnd = 2,
        HighlightText = 3,
        UseRecording = 4,
        BoxCount = 5,
    };

    TextDialogStandard();
    ~TextDialogStandard() override;

    KEventReturn doControlAction(KControlActionEvent& event) override;

    bool isChecked(Box box) const;
    void setChecked(Box box, bool on);
    KString getVoice() const;
    KColor getMarkColour() const;
    int32_t getVolumePosition() const;
    // The recording OK gives the element: the one edited here, or null
    // when "Sound Highlight..." was not used.
    KSoundHiliteMedia* getEditedRecording() const;

    void speak();
    void stopSpeaking();
    void editSoundHighlight();
    KExtendedSpeech* getTrialSpeech() const;

protected:
    const char* elementClassName() const override { return "StylusText"; }
    bool takesElement(const TapeObject& candidate) const override;
    void makeControls() override;
    void applyValues() override;
    void stopTrying() override;
    bool drawsOnPage() const override { return true; }

private:
    std::vector<KString> voices;
    KExtendedSpeechPtr trial;
    KSoundHiliteMediaPtr recording;
    int32_t recordingDuration = 0;
    KPtr<KCheckBoxNativeControl> boxes[BoxCount];
    KPtr<KPopUpListNativeControl> voiceList;
    KPtr<KButtonNativeControl> speakButton;
    KPtr<KButtonNativeControl> stopButton;
    KPtr<KSliderNativeControl> volumeSlider;
    KPtr<KColourSwatchNativeControl> markSwatch;
    KPtr<KButtonNativeControl> hiliteButton;
};
