#include "app/EditSequenceParametersDialog.h"

#include "app/EditBookmarkDialog.h"
#include "app/UiText.h"
#include "app/actors/Actor.h"
#include "app/actors/ActorSequence.h"
#include "kernel/KClass.h"
#include "windowing/KAlert.h"
#include "windowing/KEntryNativeControl.h"
#include "windowing/KPopUpListNativeControl.h"
#include "windowing/KSpinFieldNativeControl.h"
#include "windowing/KStaticTextNativeControl.h"

#include <algorithm>
#include <vector>

namespace {

constexpr int32_t kNameId = 20;
constexpr int32_t kSpeedId = 21;
constexpr int32_t kPlayTypeId = 22;
constexpr int32_t kNameLength = 64;

} // namespace

K_DEFINE_CLASS(EditSequenceParametersDialog, KDialog)

EditSequenceParametersDialog::EditSequenceParametersDialog()
{
    setTitle(uiText("Edit Parameters"));
    setBounds(KGraphicRectangle(160, 160, kWidth, kHeight));
}

EditSequenceParametersDialog::~EditSequenceParametersDialog() = default;

void EditSequenceParametersDialog::prepare(Actor& edited, ActorSequence& sequence)
{
    actor = &edited;
    movement = &sequence;
    changed = false;
}

void EditSequenceParametersDialog::open(OpenMode mode, int32_t standardButtons)
{
    KDialog::open(mode, standardButtons);
    if (!isOpen() || !movement)
        return;
    addControl(*new KStaticTextNativeControl(uiText("Name"), KWideRectangle(16, 20, 120, 20)));
    nameField
        = kAdopt(new KEntryNativeControl(kNameId, movement->getName(), KWideRectangle(140, 14, 240, 30), kNameLength));
    addControl(*nameField);
    addControl(*new KStaticTextNativeControl(uiText("Speed"), KWideRectangle(16, 58, 120, 20)));
    int32_t speed = std::clamp(movement->getSpeed(), kMinimumSpeed, kMaximumSpeed);
    speedField = kAdopt(new KSpinFieldNativeControl(kSpeedId, KWideRectangle(140, 52, 120, 30), double(kMinimumSpeed),
                                                    double(kMaximumSpeed), double(speed)));
    addControl(*speedField);
    std::vector<KString> types;
    for (int32_t type = 1; type <= kPlayTypeCount; ++type)
        types.push_back(Actor::getPlayTypeName(type));
    addControl(*new KStaticTextNativeControl(uiText("Play Type"), KWideRectangle(16, 96, 120, 20)));
    playTypeList = kAdopt(new KPopUpListNativeControl(kPlayTypeId, KWideRectangle(140, 90, 240, 30), types));
    playTypeList->setSelected(std::clamp(movement->getPlayType(), 1, kPlayTypeCount) - 1);
    addControl(*playTypeList);
}

void EditSequenceParametersDialog::close()
{
    nameField.clear();
    speedField.clear();
    playTypeList.clear();
    KDialog::close();
}

KString EditSequenceParametersDialog::refusal(const KString& name) const
{
    if (name.isEmpty())
        return uiText("A movement needs a name.");
    for (int32_t s = 0; actor && s < actor->getSequenceCount(); ++s) {
        ActorSequence* other = actor->getSequenceAt(s);
        if (other && other != movement.get() && other->getName() == name)
            return uiText("Another movement of this actor is called \"%1\". Please choose another name.", name);
    }
    return KString();
}

KEventReturn EditSequenceParametersDialog::doDialogAction(int32_t buttonId)
{
    if (buttonId == getButtonId(OkButton) && movement && nameField) {
        KString name = EditBookmarkDialog::cleaned(nameField->getText());
        KString refused = refusal(name);
        if (!refused.isEmpty()) {
            alert(getTitle(), refused);
            return 1;
        }
        int32_t speed = int32_t(speedField->getValue());
        int32_t type = playTypeList->getSelected() + 1;
        changed = name != movement->getName() || speed != movement->getSpeed() || type != movement->getPlayType();
        movement->setName(name);
        movement->setSpeed(speed);
        movement->setPlayType(type);
    }
    return KDialog::doDialogAction(buttonId);
}

bool EditSequenceParametersDialog::edit(Actor& edited, ActorSequence& sequence)
{
    KPtr<EditSequenceParametersDialog> dialog(new EditSequenceParametersDialog());
    dialog->prepare(edited, sequence);
    bool accepted = dialog->runModal() == dialog->getButtonId(OkButton);
    return accepted && dialog->changed;
}
