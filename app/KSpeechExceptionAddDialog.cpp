#include "app/KSpeechExceptionAddDialog.h"

#include "app/UiText.h"
#include "kernel/KClass.h"
#include "kernel/KVariable.h"
#include "kmultimedia/KSpeech.h"
#include "kmultimedia/KSpeechExceptionHandler.h"
#include "kmultimedia/KSpeechSupport.h"
#include "windowing/KAlert.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KEntryNativeControl.h"
#include "windowing/KPopUpListNativeControl.h"
#include "windowing/KStaticTextNativeControl.h"

namespace {

constexpr int32_t kWrittenId = 20;
constexpr int32_t kSpokenId = 21;
constexpr int32_t kVoiceId = 22;
constexpr int32_t kTestId = 23;

// The spoken form is free text, but a form of blanks alone says nothing.
bool isBlank(const KString& text)
{
    for (int32_t i = 0; i < text.getLength(); ++i) {
        if (text[i] != ' ' && text[i] != '\t')
            return false;
    }
    return true;
}

} // namespace

K_DEFINE_CLASS(KSpeechExceptionAddDialog, KDialog)

KSpeechExceptionAddDialog::KSpeechExceptionAddDialog()
{
    setTitle(uiText("Add Exception"));
    setBounds(KGraphicRectangle(140, 140, kWidth, kHeight));
}

KSpeechExceptionAddDialog::~KSpeechExceptionAddDialog()
{
    if (testSpeech)
        testSpeech->stop();
}

void KSpeechExceptionAddDialog::prepare(const KString& written, const KString& spoken, bool edit,
                                        const std::vector<KString>& taken)
{
    writtenForm = written;
    spokenForm = spoken;
    editing = edit;
    takenWords = taken;
    setTitle(edit ? uiText("Edit Exception") : uiText("Add Exception"));
}

void KSpeechExceptionAddDialog::open(OpenMode mode, int32_t standardButtons)
{
    KDialog::open(mode, standardButtons);
    if (!isOpen())
        return;
    addControl(*new KStaticTextNativeControl(uiText("Written As:"), KWideRectangle(16, 18, 100, 20)));
    writtenField = kAdopt(new KEntryNativeControl(kWrittenId, writtenForm, KWideRectangle(120, 14, 254, 24)));
    addControl(*writtenField);
    addControl(*new KStaticTextNativeControl(uiText("Spoken As:"), KWideRectangle(16, 50, 100, 20)));
    spokenField = kAdopt(new KEntryNativeControl(kSpokenId, spokenForm, KWideRectangle(120, 46, 254, 24)));
    addControl(*spokenField);
    addControl(*new KStaticTextNativeControl(uiText("Voice:"), KWideRectangle(16, 84, 100, 20)));
    voices.clear();
    int32_t chosen = -1;
    if (KSpeechSupport* support = KSpeechSupport::current()) {
        voices = support->getVoices();
        for (size_t i = 0; i < voices.size(); ++i) {
            if (voices[i] == support->getDefaultVoice())
                chosen = int32_t(i);
        }
    }
    voiceList = kAdopt(new KPopUpListNativeControl(kVoiceId, KWideRectangle(120, 80, 174, 26), voices));
    voiceList->setSelected(chosen >= 0 ? chosen : 0);
    addControl(*voiceList);
    testButton = kAdopt(new KButtonNativeControl(kTestId, uiText("Test"), KWideRectangle(304, 82, 70, 22)));
    testButton->setEnabled(!voices.empty());
    addControl(*testButton);
}

void KSpeechExceptionAddDialog::close()
{
    if (testSpeech)
        testSpeech->stop();
    writtenForm = getWritten();
    spokenForm = getSpoken();
    KDialog::close();
}

KString KSpeechExceptionAddDialog::getWritten() const { return writtenField ? writtenField->getText() : writtenForm; }

KString KSpeechExceptionAddDialog::getSpoken() const { return spokenField ? spokenField->getText() : spokenForm; }

void KSpeechExceptionAddDialog::setWritten(const KString& text)
{
    writtenForm = text;
    if (writtenField)
        writtenField->setText(text);
}

void KSpeechExceptionAddDialog::setSpoken(const KString& text)
{
    spokenForm = text;
    if (spokenField)
        spokenField->setText(text);
}

KString KSpeechExceptionAddDialog::getVoice() const { return voiceList ? voiceList->getSelectedText() : KString(); }

KSpeech* KSpeechExceptionAddDialog::getTestSpeech() const { return testSpeech.get(); }

void KSpeechExceptionAddDialog::test()
{
    KString spoken = getSpoken();
    if (isBlank(spoken) || getVoice().isEmpty()) {
        beep();
        return;
    }
    if (!testSpeech)
        testSpeech = kAdopt(new KSpeech());
    testSpeech->speak(getVoice(), spoken);
}

KSpeechExceptionAddDialog::Refusal KSpeechExceptionAddDialog::check(const KString& written, const KString& spoken,
                                                                    const std::vector<KString>& taken)
{
    if (written.isEmpty())
        return Refusal::NoWrittenForm;
    if (!KSpeechExceptionHandler::isWordForm(written))
        return Refusal::BlankInWrittenForm;
    if (isBlank(spoken))
        return Refusal::NoSpokenForm;
    for (const KString& word : taken) {
        if (word == written)
            return Refusal::AlreadyDefined;
    }
    return Refusal::None;
}

void KSpeechExceptionAddDialog::tell(Refusal refusal)
{
    switch (refusal) {
    case Refusal::None:
        return;
    case Refusal::NoWrittenForm:
        alert(uiText("Speech Exceptions"),
              uiText("Please type the word as it is written in the \"Written As:\" field."));
        return;
    case Refusal::BlankInWrittenForm:
        alert(uiText("No blanks allowed!"),
              uiText("Spaces are not allowed in the \"Written As:\" field, please remove any spaces before trying "
                     "again."));
        return;
    case Refusal::NoSpokenForm:
        alert(uiText("Speech Exceptions"),
              uiText("Please type in the \"Spoken As:\" field how the word is to be spoken."));
        return;
    case Refusal::AlreadyDefined:
        alert(uiText("Speech Exceptions"), uiText("Exception already defined"));
        return;
    }
}

KEventReturn KSpeechExceptionAddDialog::doDialogAction(int32_t buttonId)
{
    if (buttonId == getButtonId(OkButton)) {
        Refusal refusal = check(getWritten(), getSpoken(), takenWords);
        if (refusal != Refusal::None) {
            tell(refusal);
            return 1;
        }
        setParameter("Written As", KVariable(getWritten()));
        setParameter("Spoken As", KVariable(getSpoken()));
    }
    return KDialog::doDialogAction(buttonId);
}

KEventReturn KSpeechExceptionAddDialog::doControlAction(KControlActionEvent& event)
{
    if (testButton && event.getSource() == testButton.get()) {
        test();
        return 1;
    }
    return KDialog::doControlAction(event);
}

bool KSpeechExceptionAddDialog::ask(KString& written, KString& spoken, bool editing, const std::vector<KString>& taken)
{
    KPtr<KSpeechExceptionAddDialog> dialog(new KSpeechExceptionAddDialog());
    dialog->prepare(written, spoken, editing, taken);
    if (dialog->runModal() != dialog->getButtonId(OkButton))
        return false;
    written = dialog->getWritten();
    spoken = dialog->getSpoken();
    return true;
}
