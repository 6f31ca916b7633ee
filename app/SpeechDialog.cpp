#include "app/SpeechDialog.h"

#include "app/UiText.h"
#include "kernel/KClass.h"
#include "kmultimedia/KExtendedSpeech.h"
#include "kmultimedia/KSpeechSupport.h"
#include "tape/StylusSpeech.h"
#include "windowing/KAlert.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KCheckBoxNativeControl.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KMultiLineTextNativeControl.h"
#include "windowing/KPopUpListNativeControl.h"
#include "windowing/KSliderNativeControl.h"

#include <algorithm>
#include <string>

namespace {

constexpr int32_t kTextId = 20;
constexpr int32_t kVoiceId = 21;
constexpr int32_t kSpeakId = 22;
constexpr int32_t kStopId = 23;
constexpr int32_t kWaitId = 24;
constexpr int32_t kVolumeId = 25;

KString replaced(const KString& text, char from, char to)
{
    std::string bytes(text.c_str(), size_t(text.getLength()));
    std::replace(bytes.begin(), bytes.end(), from, to);
    return KString(bytes.c_str());
}

} // namespace

bool elementTextIsBlank(const KString& text)
{
    std::string bytes(text.c_str(), size_t(text.getLength()));
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; });
}

KString textForField(const KString& text) { return replaced(text, '\r', '\n'); }

KString textFromField(const KString& text) { return replaced(text, '\n', '\r'); }

K_DEFINE_CLASS(SpeechDialog, ElementDialog)

SpeechDialog::SpeechDialog()
{
    setTitle(uiText("Speech"));
    setBounds(KGraphicRectangle(140, 140, kWidth, kHeight));
}

SpeechDialog::~SpeechDialog() { stopTrying(); }

bool SpeechDialog::takesElement(const TapeObject& candidate) const
{
    return dynamic_cast<const StylusSpeech*>(&candidate) != nullptr;
}

std::vector<KString> SpeechDialog::voicesFor(const KString& current)
{
    std::vector<KString> offered;
    if (KSpeechSupport* support = KSpeechSupport::current())
        offered = support->getVoices();
    if (!current.isEmpty() && std::find(offered.begin(), offered.end(), current) == offered.end())
        offered.insert(offered.begin(), current);
    return offered;
}

void SpeechDialog::makeControls()
{
    const auto& speech = static_cast<const StylusSpeech&>(*getElement());
    addLabel(uiText("Text"), 16, 16, 80);
    textField = kAdopt(
        new KMultiLineTextNativeControl(kTextId, textForField(speech.getText()), KWideRectangle(100, 14, 404, 70)));
    addControl(*textField);
    addLabel(uiText("Voice"), 16, 100, 80);
    voices = voicesFor(speech.getVoice());
    voiceList = kAdopt(new KPopUpListNativeControl(kVoiceId, KWideRectangle(100, 96, 236, 26), voices));
    auto chosen = std::find(voices.begin(), voices.end(), speech.getVoice());
    voiceList->setSelected(chosen == voices.end() ? 0 : int32_t(chosen - voices.begin()));
    addControl(*voiceList);
    speakButton = kAdopt(new KButtonNativeControl(kSpeakId, uiText("Speak"), KWideRectangle(348, 96, 76, 26)));
    stopButton = kAdopt(new KButtonNativeControl(kStopId, uiText("Stop"), KWideRectangle(428, 96, 76, 26)));
    speakButton->setEnabled(KSpeechSupport::hasEngine());
    stopButton->setEnabled(KSpeechSupport::hasEngine());
    addControl(*speakButton);
    addControl(*stopButton);
    waitBox = kAdopt(new KCheckBoxNativeControl(kWaitId, uiText("Wait Until Finished"),
                                                KWideRectangle(100, 132, 250, 22), speech.getWaitForEnd()));
    addControl(*waitBox);
    volumeSlider = addVolumeSlider(kVolumeId, 16, 164, speech.getVolume());
}

KString SpeechDialog::getText() const { return textField ? textFromField(textField->getText()) : KString(); }

void SpeechDialog::setText(const KString& text)
{
    if (textField)
        textField->setText(textForField(text));
}

KString SpeechDialog::getVoice() const { return voiceList ? voiceList->getSelectedText() : KString(); }

bool SpeechDialog::getWaitForEnd() const { return waitBox && waitBox->isChecked(); }

int32_t SpeechDialog::getVolumePosition() const { return volumeSlider ? volumeSlider->getIntegerValue() : 0; }

void SpeechDialog::speak()
{
    KString text = getText();
    if (!KSpeechSupport::hasEngine() || elementTextIsBlank(text)) {
        beep();
        return;
    }
    stopSpeaking();
    if (!trial)
        trial = kAdopt(new KExtendedSpeech());
    const auto& speech = static_cast<const StylusSpeech&>(*getElement());
    trial->setSpeed(trialSpeechSpeed());
    trial->setVolume(volumeOfSlider(getVolumePosition(), speech.getVolume()));
    trial->setVoice(getVoice());
    trial->setText(text);
    trial->play();
}

void SpeechDialog::stopSpeaking()
{
    if (trial)
        trial->stop();
}

void SpeechDialog::stopTrying() { stopSpeaking(); }

KString SpeechDialog::refusal() const
{
    return elementTextIsBlank(getText()) ? uiText("Please Specify Some Text.") : KString();
}

void SpeechDialog::applyValues()
{
    auto& speech = static_cast<StylusSpeech&>(*getElement());
    speech.setText(getText());
    if (!getVoice().isEmpty())
        speech.setVoice(getVoice());
    speech.setWaitForEnd(getWaitForEnd());
    speech.setVolume(volumeOfSlider(getVolumePosition(), speech.getVolume()));
}

KEventReturn SpeechDialog::doControlAction(KControlActionEvent& event)
{
    KThing* source = event.getSource();
    if (speakButton && source == speakButton.get()) {
        speak();
        return 1;
    }
    if (stopButton && source == stopButton.get()) {
        stopSpeaking();
        return 1;
    }
    return ElementDialog::doControlAction(event);
}

KExtendedSpeech* SpeechDialog::getTrialSpeech() const { return trial.get(); }
