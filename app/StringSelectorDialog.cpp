#include "app/StringSelectorDialog.h"

#include "app/EditBookmarkDialog.h"
#include "kernel/KClass.h"
#include "kernel/KVariable.h"
#include "windowing/KEntryNativeControl.h"
#include "windowing/KPopUpListNativeControl.h"
#include "windowing/KStaticTextNativeControl.h"

namespace {

constexpr int32_t kListId = 20;
constexpr int32_t kFieldId = 21;

} // namespace

K_DEFINE_CLASS(StringSelectorDialog, KDialog)

StringSelectorDialog::StringSelectorDialog() { setBounds(KGraphicRectangle(160, 160, kWidth, kHeight)); }

StringSelectorDialog::~StringSelectorDialog() = default;

void StringSelectorDialog::prepare(const KString& title, const KString& labelText, const std::vector<KString>& offered,
                                   int32_t chosen, const KString& typed)
{
    setTitle(title);
    label = labelText;
    choices = offered;
    selection = offered.empty() ? -1 : std::clamp(chosen, 0, int32_t(offered.size()) - 1);
    name = typed;
}

void StringSelectorDialog::open(OpenMode mode, int32_t standardButtons)
{
    KDialog::open(mode, standardButtons);
    if (!isOpen())
        return;
    int32_t left = 16;
    if (!label.isEmpty()) {
        addControl(*new KStaticTextNativeControl(label, KWideRectangle(16, 22, 120, 20)));
        left = 140;
    }
    KWideRectangle place(int16_t(left), 18, int16_t(kWidth - 16 - left), 26);
    if (choices.empty()) {
        field = kAdopt(new KEntryNativeControl(kFieldId, name, place, kMaximumLength));
        addControl(*field);
        return;
    }
    list = kAdopt(new KPopUpListNativeControl(kListId, place, choices));
    list->setSelected(selection);
    addControl(*list);
}

void StringSelectorDialog::close()
{
    selection = getSelection();
    name = getName();
    list.clear();
    field.clear();
    KDialog::close();
}

int32_t StringSelectorDialog::getSelection() const { return list ? list->getSelected() : selection; }

KString StringSelectorDialog::getName() const
{
    if (field)
        return EditBookmarkDialog::cleaned(field->getText());
    int32_t index = getSelection();
    if (!choices.empty())
        return index >= 0 && index < int32_t(choices.size()) ? choices[size_t(index)] : KString();
    return name;
}

KEventReturn StringSelectorDialog::doDialogAction(int32_t buttonId)
{
    if (buttonId == getButtonId(OkButton)) {
        setParameter("Selection", KVariable(getSelection()));
        setParameter("Name", KVariable(getName()));
    }
    return KDialog::doDialogAction(buttonId);
}

bool StringSelectorDialog::choose(const KString& title, const std::vector<KString>& offered, int32_t& chosen)
{
    KPtr<StringSelectorDialog> dialog(new StringSelectorDialog());
    dialog->prepare(title, KString(), offered, chosen, KString());
    if (dialog->runModal() != dialog->getButtonId(OkButton))
        return false;
    KVariable* taken = dialog->getParameter("Selection");
    if (!taken || taken->getLong() < 0 || taken->getLong() >= int32_t(offered.size()))
        return false;
    chosen = taken->getLong();
    return true;
}

bool StringSelectorDialog::askName(const KString& title, const KString& labelText, KString& typed)
{
    KPtr<StringSelectorDialog> dialog(new StringSelectorDialog());
    dialog->prepare(title, labelText, {}, 0, typed);
    if (dialog->runModal() != dialog->getButtonId(OkButton))
        return false;
    KVariable* taken = dialog->getParameter("Name");
    typed = taken ? taken->getString() : KString();
    return true;
}
