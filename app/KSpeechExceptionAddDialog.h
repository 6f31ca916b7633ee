#pragma once

#include "kernel/KString.h"
#include "kmultimedia/KMultimediaForward.h"
#include "windowing/KDialog.h"

#include <vector>

class KEntryNativeControl;
class KPopUpListNativeControl;
class KButtonNativeControl;

// Asks for one speech exception: the word as it is written ("Written As:")
// and the text the speech engine gets in its place ("Spoken As:"). "Test"
// speaks the spoken text with the voice chosen under "Voice:"; the voice is
// only for the test, since exceptions hold for every voice. A refused
// answer is told and the dialog stays open. On OK the parameters
// "Written As" and "Spoken As" hold the answer.
class KSpeechExceptionAddDialog : public KDialog {
    K_DECLARE_CLASS(KSpeechExceptionAddDialog)
public:
    static constexpr int32_t kWidth = 390;
    static constexpr int32_t kHeight = 160;

    // Why an answer is refused.
    enum class Refusal : int32_t {
        None = 0,
        NoWrittenForm = 1,
        BlankInWrittenForm = 2,
        NoSpokenForm = 3,
        AlreadyDefined = 4,
    };

    KSpeechExceptionAddDialog();
    ~KSpeechExceptionAddDialog() override;

    // Editing shows "Edit Exception" and the entry's forms. `taken` are the
    // written forms already in the list, the edited one left out.
    void prepare(const KString& written, const KString& spoken, bool editing, const std::vector<KString>& taken);
    using KDialog::open;
    void open(OpenMode mode, int32_t standardButtons) override;
    void close() override;
    KEventReturn doDialogAction(int32_t buttonId) override;
    KEventReturn doControlAction(KControlActionEvent& event) override;

    KString getWritten() const;
    KString getSpoken() const;
    void setWritten(const KString& text);
    void setSpoken(const KString& text);
    // The chosen voice's name; empty when there are no voices.
    KString getVoice() const;
    // Speaks the spoken form with the chosen voice.
    void test();
    KSpeech* getTestSpeech() const;

    static Refusal check(const KString& written, const KString& spoken, const std::vector<KString>& taken);
    // Tells the user why; nothing for None.
    static void tell(Refusal refusal);

    // Runs the dialog modally; false when the user cancelled. The forms
    // come in as they are and go out as answered.
    static bool ask(KString& written, KString& spoken, bool editing, const std::vector<KString>& taken);

private:
    KString writtenForm;
    KString spokenForm;
    bool editing = false;
    std::vector<KString> takenWords;
    std::vector<KString> voices;
    KPtr<KEntryNativeControl> writtenField;
    KPtr<KEntryNativeControl> spokenField;
    KPtr<KPopUpListNativeControl> voiceList;
    KPtr<KButtonNativeControl> testButton;
    KSpeechPtr testSpeech;
};
