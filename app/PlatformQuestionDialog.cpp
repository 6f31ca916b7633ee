#include "app/PlatformQuestionDialog.h"

#include "app/UiText.h"
#include "kernel/KClass.h"
#include "windowing/KStaticTextNativeControl.h"

K_DEFINE_CLASS(PlatformQuestionDialog, KDialog)

PlatformQuestionDialog::PlatformQuestionDialog()
{
    setTitle(uiText("Convert Old TaleLoom Document"));
    setBounds(KGraphicRectangle(100, 100, kWidth, kHeight));
    setButtonText(OkButton, uiText("Windows"));
    setButtonText(CancelButton, uiText("Macintosh"));
}

PlatformQuestionDialog::~PlatformQuestionDialog() = default;

void PlatformQuestionDialog::open(OpenMode mode, int32_t standardButtons)
{
    KDialog::open(mode, standardButtons);
    if (!isOpen())
        return;
    addControl(*new KStaticTextNativeControl(
        uiText("Was this document created on a Macintosh or on a Windows-based computer?"),
        KWideRectangle(16, 16, kWidth - 32, 48)));
}

int32_t PlatformQuestionDialog::ask()
{
    KPtr<PlatformQuestionDialog> dialog(new PlatformQuestionDialog());
    int32_t answer = dialog->runModal();
    return answer == dialog->getButtonId(CancelButton) ? KString::Macintosh : KString::Windows;
}
