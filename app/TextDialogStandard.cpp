#include "app/TextDialogStandard.h"

#include "app/KSoundHiliteEditorDialog.h"
#include "app/SpeechDialog.h"
#include "app/UiText.h"
#include "graphics/KColor.h"
#include "kernel/KClass.h"
#include "kernel/KDirectory.h"
#include "kernel/KLocalizer.h"
#include "kmultimedia/KExtendedSpeech.h"
#include "kmultimedia/KSoundHiliteMedia.h"
#include "kmultimedia/KSpeechSupport.h"
#include "tape/StylusText.h"
#include "tape/Tape.h"
#include "windowing/KAlert.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KCheckBoxNativeControl.h"
#include "windowing/KColourSwatchNativeControl.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KPopUpListNativeControl.h"
#include "windowing/KSliderNativeControl.h"

#include <algorithm>

namespace {

constexpr int32_t kFirstBoxId = 20;
constexpr int32_t kVoiceId = 30;
constexpr int32_t kSpeakId = 31;
constexpr int32_t kStopId = 32;
constexpr int32_t kVolumeId = 33;
constexpr int32_t kMarkColourId = 34;
constexpr int32_t kHiliteId = 35;

struct BoxPlace {
    const char* text;
    int32_t x;
    int32_t y;
};

constexpr BoxPlace kBoxes[TextDialogStandard::BoxCount] = {
    { kTranslatable("Transparent Background"), 16, 16 }, { kTranslatable("Use Speech"), 16, 50 },
    { kTranslatable("Wait Until Finished"), 36, 112 },   { kTranslatable("Highlight Text"), 16, 184 },
    { kTranslatable("Use Recording"), 16, 218 },
};

} // namespace

K_DEFINE_CLASS(TextDialogStandard, ElementDialog)

TextDialogStandard::TextDialogStandard()
{
    setTitle(uiText("Text Settings"));
    setBounds(KGraphicRectangle(140, 120, kWidth, kHeight));
}

TextDialogStandard::~TextDialogStandard() { stopTrying(); }

bool TextDialogStandard::takesElement(const TapeObject& candidate) const
{
    return dynamic_cast<const StylusText*>(&candidate) != nullptr;
}

void TextDialogStandard::makeControls()
{
    const auto& text = static_cast<const StylusText&>(*getElement());
    const bool values[BoxCount] = { text.isTransparent(), text.getSpeaks(), text.getWaitForEnd(), text.getMarksWords(),
                                    text.getUsesRecording() };
    for (int32_t i = 0; i < BoxCount; ++i) {
        const BoxPlace& place = kBoxes[i];
        boxes[i] = kAdopt(new KCheckBoxNativeControl(kFirstBoxId + i, uiTranslate(place.text),
                                                     KWideRectangle(place.x, place.y, 240, 22), values[i]));
        addControl(*boxes[i]);
    }
    addLabel(uiText("Voice"), 36, 82, 60);
    voices = SpeechDialog::voicesFor(text.getVoice());
    voiceList = kAdopt(new KPopUpListNativeControl(kVoiceId, KWideRectangle(100, 78, 236, 26), voices));
    auto chosen = std::find(voices.begin(), voices.end(), text.getVoice());
    voiceList->setSelected(chosen == voices.end() ? 0 : int32_t(chosen - voices.begin()));
    addControl(*voiceList);
    speakButton = kAdopt(new KButtonNativeControl(kSpeakId, uiText("Speak"), KWideRectangle(348, 78, 76, 26)));
    stopButton = kAdopt(new KButtonNativeControl(kStopId, uiText("Stop"), KWideRectangle(428, 78, 76, 26)));
    speakButton->setEnabled(KSpeechSupport::hasEngine());
    stopButton->setEnabled(KSpeechSupport::hasEngine());
    addControl(*speakButton);
    addControl(*stopButton);
    volumeSlider = addVolumeSlider(kVolumeId, 36, 144, text.getVolume());
    addLabel(uiText("Highlight Color"), 200, 186, 120);
    markSwatch
        = kAdopt(new KColourSwatchNativeControl(kMarkColourId, KWideRectangle(326, 184, 40, 22), text.getMarkColour()));
    addControl(*markSwatch);
    hiliteButton
        = kAdopt(new KButtonNativeControl(kHiliteId, uiText("Sound Highlight..."), KWideRectangle(200, 218, 150, 22)));
    addControl(*hiliteButton);
}

bool TextDialogStandard::isChecked(Box box) const { return boxes[box] && boxes[box]->isChecked(); }

void TextDialogStandard::setChecked(Box box, bool on)
{
    if (boxes[box])
        boxes[box]->setChecked(on);
}

KString TextDialogStandard::getVoice() const { return voiceList ? voiceList->getSelectedText() : KString(); }

KColor TextDialogStandard::getMarkColour() const
{
    return markSwatch ? markSwatch->getColour() : static_cast<const StylusText&>(*getElement()).getMarkColour();
}

int32_t TextDialogStandard::getVolumePosition() const { return volumeSlider ? volumeSlider->getIntegerValue() : 0; }

void TextDialogStandard::speak()
{
    const auto& text = static_cast<const StylusText&>(*getElement());
    KString words = text.getPlainText();
    if (!KSpeechSupport::hasEngine() || elementTextIsBlank(words)) {
        beep();
        return;
    }
    stopSpeaking();
    if (!trial)
        trial = kAdopt(new KExtendedSpeech());
    trial->setSpeed(trialSpeechSpeed());
    trial->setVolume(volumeOfSlider(getVolumePosition(), text.getVolume()));
    trial->setVoice(getVoice());
    trial->setText(words);
    trial->play();
}

void TextDialogStandard::stopSpeaking()
{
    if (trial)
        trial->stop();
}

void TextDialogStandard::stopTrying() { stopSpeaking(); }

// The editor works on a copy; what it hands back waits here for OK.
void TextDialogStandard::editSoundHighlight()
{
    stopSpeaking();
    const auto& text = static_cast<const StylusText&>(*getElement());
    Tape* tape = getTapeEdited();
    KDirectory* media = tape ? tape->getMediaDirectory() : nullptr;
    const KSoundHiliteMedia* existing = recording ? recording.get() : &text.getRecording();
    int32_t duration = recording ? recordingDuration : text.getRecordingDuration();
    KSoundHiliteEditorDialog::Result result;
    if (!KSoundHiliteEditorDialog::edit(text.getPlainText(), media ? *media : KDirectory(), existing, duration, result)
        || !result.media)
        return;
    recording = result.media;
    recordingDuration = result.duration;
    setChecked(UseRecording, true);
}

void TextDialogStandard::applyValues()
{
    auto& text = static_cast<StylusText&>(*getElement());
    text.setTransparent(isChecked(Transparent));
    text.setSpeaks(isChecked(UseSpeech));
    if (!getVoice().isEmpty())
        text.setVoice(getVoice());
    text.setWaitForEnd(isChecked(WaitForEnd));
    text.setVolume(volumeOfSlider(getVolumePosition(), text.getVolume()));
    text.setMarksWords(isChecked(HighlightText));
    text.setMarkColour(getMarkColour());
    if (recording) {
        text.setRecording(*recording);
        text.setRecordingDuration(recordingDuration);
    }
    text.setUsesRecording(isChecked(UseRecording));
}

KEventReturn TextDialogStandard::doControlAction(KControlActionEvent& event)
{
    KThing* source = event.getSource();
    if (speakButton && source == speakButton.get())
        speak();
    else if (stopButton && source == stopButton.get())
        stopSpeaking();
    else if (hiliteButton && source == hiliteButton.get())
        editSoundHighlight();
    else
        return ElementDialog::doControlAction(event);
    return 1;
}

KExtendedSpeech* TextDialogStandard::getTrialSpeech() const { return trial.get(); }

KSoundHiliteMedia* TextDialogStandard::getEditedRecording() const { return recording.get(); }
