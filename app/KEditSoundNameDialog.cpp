#include "app/KEditSoundNameDialog.h"

#include "app/UiText.h"
#include "kernel/KClass.h"
#include "kernel/KTextCodec.h"
#include "kernel/KVariable.h"
#include "kmultimedia/KSoundRecordSession.h"
#include "windowing/KAlert.h"
#include "windowing/KEntryNativeControl.h"
#include "windowing/KStaticTextNativeControl.h"

namespace {

constexpr int32_t kNameId = 20;

} // namespace

K_DEFINE_CLASS(KEditSoundNameDialog, KDialog)

KEditSoundNameDialog::KEditSoundNameDialog()
{
    setTitle(uiText("New Sound File"));
    setBounds(KGraphicRectangle(160, 160, kWidth, kHeight));
}

KEditSoundNameDialog::~KEditSoundNameDialog() = default;

void KEditSoundNameDialog::setName(const KString& value)
{
    name = value;
    if (nameField)
        nameField->setText(value);
}

KString KEditSoundNameDialog::getName() const { return nameField ? nameField->getText() : name; }

void KEditSoundNameDialog::open(OpenMode mode, int32_t standardButtons)
{
    KDialog::open(mode, standardButtons);
    if (!isOpen())
        return;
    addControl(*new KStaticTextNativeControl(uiText("Name:"), KWideRectangle(16, 22, 60, 20)));
    nameField = kAdopt(new KEntryNativeControl(kNameId, name, KWideRectangle(80, 18, 224, 24),
                                               int32_t(KSoundRecordSession::kMaximumNameLength)));
    addControl(*nameField);
}

void KEditSoundNameDialog::close()
{
    name = getName();
    KDialog::close();
}

bool KEditSoundNameDialog::isAcceptable(const KString& value)
{
    return KSoundRecordSession::isValidName(KTextCodec::toUtf8(value));
}

KEventReturn KEditSoundNameDialog::doDialogAction(int32_t buttonId)
{
    if (buttonId == getButtonId(OkButton)) {
        if (!isAcceptable(getName())) {
            alert(uiText("New Sound File"), uiText("The sound name contains illegal characters."));
            return 1;
        }
        setParameter(KString(kResultParameter), KVariable(getName()));
    }
    return KDialog::doDialogAction(buttonId);
}

bool KEditSoundNameDialog::ask(KString& value)
{
    KPtr<KEditSoundNameDialog> dialog(new KEditSoundNameDialog());
    dialog->setName(value);
    if (dialog->runModal() != dialog->getButtonId(OkButton))
        return false;
    KVariable* answer = dialog->getParameter(KString(kResultParameter));
    value = answer ? answer->getString() : dialog->getName();
    return true;
}
