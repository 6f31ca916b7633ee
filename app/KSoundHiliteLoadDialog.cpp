#include "app/KSoundHiliteLoadDialog.h"

#include "app/UiText.h"
#include "kernel/KClass.h"
#include "kernel/KVariable.h"
#include "windowing/KPopUpListNativeControl.h"

namespace {

constexpr int32_t kFileListId = 20;

} // namespace

K_DEFINE_CLASS(KSoundHiliteLoadDialog, KDialog)

KSoundHiliteLoadDialog::KSoundHiliteLoadDialog()
{
    setTitle(uiText("Load SHI File"));
    setBounds(KGraphicRectangle(160, 160, kWidth, kHeight));
}

KSoundHiliteLoadDialog::~KSoundHiliteLoadDialog() = default;

void KSoundHiliteLoadDialog::prepare(const std::vector<KString>& names)
{
    fileNames = names;
    selected = names.empty() ? -1 : 0;
}

void KSoundHiliteLoadDialog::open(OpenMode mode, int32_t standardButtons)
{
    KDialog::open(mode, standardButtons);
    if (!isOpen())
        return;
    fileList = kAdopt(new KPopUpListNativeControl(kFileListId, KWideRectangle(16, 20, kWidth - 32, 26), fileNames));
    fileList->setSelected(selected);
    addControl(*fileList);
}

int32_t KSoundHiliteLoadDialog::getSelected() const { return fileList ? fileList->getSelected() : selected; }

void KSoundHiliteLoadDialog::setSelected(int32_t index)
{
    selected = index;
    if (fileList)
        fileList->setSelected(index);
}

KString KSoundHiliteLoadDialog::getChosenName() const
{
    int32_t index = getSelected();
    return index >= 0 && index < int32_t(fileNames.size()) ? fileNames[size_t(index)] : KString();
}

KEventReturn KSoundHiliteLoadDialog::doDialogAction(int32_t buttonId)
{
    if (buttonId == getButtonId(OkButton))
        setParameter("File Name", KVariable(getChosenName()));
    return KDialog::doDialogAction(buttonId);
}

bool KSoundHiliteLoadDialog::choose(const std::vector<KString>& names, KString& chosen)
{
    KPtr<KSoundHiliteLoadDialog> dialog(new KSoundHiliteLoadDialog());
    dialog->prepare(names);
    if (dialog->runModal() != dialog->getButtonId(OkButton))
        return false;
    KVariable* name = dialog->getParameter("File Name");
    if (!name || name->getString().isEmpty())
        return false;
    chosen = name->getString();
    return true;
}
