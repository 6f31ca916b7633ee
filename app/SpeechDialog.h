#pragma once

#include "app/ElementDialog.h"
#include "kmultimedia/KMultimediaForward.h"

#include <vector>

class KButtonNativeControl;
class KCheckBoxNativeControl;
class KMultiLineTextNativeControl;
class KPopUpListNativeControl;
class KSliderNativeControl;

// "Speech": the text a voice says, the voice, whether the story waits for
// the end, and the volume. "Speak" says the text as the controls stand,
// through the speech exceptions, as the story would; "Stop" silences it.
class SpeechDialog : public ElementDialog {
    K_DECLARE_CLASS(SpeechDialog)
public:
    static constexpr int32_t kWidth = 520;
    static constexpr int32_t kHeight = 260;

    SpeechDialog();
    ~SpeechDialog() override;

    KEventReturn doControlAction(KControlActionEvent& event) override;

    KString getText() const;
    void setText(const KString& text);
    KString getVoice() const;
    const std::vector<KString>& getVoices() const { return voices; }
    bool getWaitForEnd() const;
    int32_t getVolumePosition() const;

    void speak();
    void stopSpeaking();
    // The voice that tries the text, while the dialog has one.
    KExtendedSpeech* getTrialSpeech() const;

    // The voices offered: the engine's, with the element's own first when
    // the engine does not list it, so that an OK keeps it.
    static std::vector<KString> voicesFor(const KString& current);

protected:
    const char* elementClassName() const override { return "StylusSpeech"; }
    bool takesElement(const TapeObject& candidate) const override;
    void makeControls() override;
    KString refusal() const override;
    void applyValues() override;
    void stopTrying() override;

private:
    std::vector<KString> voices;
    KExtendedSpeechPtr trial;
    KPtr<KMultiLineTextNativeControl> textField;
    KPtr<KPopUpListNativeControl> voiceList;
    KPtr<KButtonNativeControl> speakButton;
    KPtr<KButtonNativeControl> stopButton;
    KPtr<KCheckBoxNativeControl> waitBox;
    KPtr<KSliderNativeControl> volumeSlider;
};

// Whether a text holds anything to say: not empty, not only blanks.
bool elementTextIsBlank(const KString& text);
// Line ends: a CR inside the program, a line feed in the native fields.
KString textForField(const KString& text);
KString textFromField(const KString& text);
