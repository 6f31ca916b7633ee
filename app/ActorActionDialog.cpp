#include "app/ActorActionDialog.h"

#include "app/ActorEditor.h"
#include "app/StylusActions.h"
#include "app/UiText.h"
#include "app/actors/Actor.h"
#include "app/actors/ActorAction.h"
#include "app/actors/ActorLoading.h"
#include "app/actors/ActorSequence.h"
#include "kernel/KClass.h"
#include "kernel/KDirectory.h"
#include "kernel/KFileReference.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KPopUpListNativeControl.h"
#include "windowing/KSpinFieldNativeControl.h"

#include <algorithm>

namespace {

constexpr int32_t kActorId = 20;
constexpr int32_t kActionId = 21;
constexpr int32_t kMovementId = 22;
constexpr int32_t kOrderId = 23;
constexpr int32_t kSpeedId = 24;
constexpr int32_t kActionCount = 6;
constexpr int32_t kOrderCount = 4;

KDirectory* projectActors()
{
    StylusActions* actions = StylusActions::current();
    StylusProject* project = actions ? actions->getProject() : nullptr;
    return project ? project->getActorsDirectory() : nullptr;
}

int32_t indexOf(const std::vector<KString>& names, const KString& name)
{
    auto found = std::find(names.begin(), names.end(), name);
    return found == names.end() ? 0 : int32_t(found - names.begin());
}

} // namespace

K_DEFINE_CLASS(ActorActionDialog, ElementDialog)

ActorActionDialog::ActorActionDialog()
{
    setTitle(uiText("Actor"));
    setBounds(KGraphicRectangle(160, 160, kWidth, kHeight));
}

ActorActionDialog::~ActorActionDialog() = default;

bool ActorActionDialog::takesElement(const TapeObject& candidate) const
{
    return dynamic_cast<const ActorAction*>(&candidate) != nullptr;
}

std::vector<KString> ActorActionDialog::movementsOf(Tape& tape, const KString& actorName)
{
    std::vector<KString> names;
    ActorPtr actor(dynamic_cast<Actor*>(tape.getActor(actorName)));
    KDirectory* folder = projectActors();
    if (!actor && folder) {
        KFileReference file = actorFileIn(*folder, actorName);
        if (file.doesExist()) {
            actor = kAdopt(new Actor());
            bool checkMedia = false;
            if (!actor->open(file, checkMedia))
                actor.clear();
        }
    }
    for (int32_t s = 0; actor && s < actor->getSequenceCount(); ++s)
        names.push_back(actor->getSequenceAt(s)->getName());
    return names;
}

void ActorActionDialog::makeControls()
{
    const auto& action = static_cast<const ActorAction&>(*getElement());
    if (KDirectory* folder = projectActors())
        actorNames = ActorEditor::actorNamesIn(*folder);
    // An action keeps naming its actor even when the file went away.
    const KString& named = action.getActorName();
    if (!named.isEmpty() && std::find(actorNames.begin(), actorNames.end(), named) == actorNames.end())
        actorNames.insert(actorNames.begin(), named);

    addLabel(uiText("Actor"), 16, 20, 110);
    actorList = kAdopt(new KPopUpListNativeControl(kActorId, KWideRectangle(130, 14, 230, 30), actorNames));
    actorList->setSelected(indexOf(actorNames, action.getActorName()));
    addControl(*actorList);

    std::vector<KString> actions;
    for (int32_t number = 1; number <= kActionCount; ++number)
        actions.push_back(ActorAction::getActionName(number));
    addLabel(uiText("Action"), 16, 58, 110);
    actionList = kAdopt(new KPopUpListNativeControl(kActionId, KWideRectangle(130, 52, 230, 30), actions));
    actionList->setSelected(std::clamp(action.getAction(), 1, kActionCount) - 1);
    addControl(*actionList);

    addLabel(uiText("Movement"), 16, 96, 110);
    movementList = kAdopt(new KPopUpListNativeControl(kMovementId, KWideRectangle(130, 90, 230, 30)));
    addControl(*movementList);
    fillMovements(action.getMovementName());

    std::vector<KString> orders;
    for (int32_t number = 0; number < kOrderCount; ++number)
        orders.push_back(ActorAction::getOrderChangeName(number));
    addLabel(uiText("Order"), 16, 134, 110);
    orderList = kAdopt(new KPopUpListNativeControl(kOrderId, KWideRectangle(130, 128, 230, 30), orders));
    orderList->setSelected(std::clamp(action.getOrderChange(), 0, kOrderCount - 1));
    addControl(*orderList);

    addLabel(uiText("Speed"), 16, 172, 110);
    speedField = kAdopt(new KSpinFieldNativeControl(kSpeedId, KWideRectangle(130, 166, 120, 30), 0.0,
                                                    double(kMaximumSpeed), double(action.getSpeed())));
    addControl(*speedField);
    enableForAction();
}

void ActorActionDialog::fillMovements(const KString& chosen)
{
    Tape* tape = getTapeEdited();
    std::vector<KString> names = tape ? movementsOf(*tape, getActorName()) : std::vector<KString>();
    movementList->setItems(names);
    movementList->setSelected(names.empty() ? -1 : indexOf(names, chosen));
}

// Each action uses only some of the fields.
void ActorActionDialog::enableForAction()
{
    int32_t action = getAction();
    movementList->setEnabled(action == ActorAction::EnterOnScene || action == ActorAction::ChangeMovement);
    orderList->setEnabled(action == ActorAction::ChangeOrder);
    speedField->setEnabled(action == ActorAction::MoveResize);
}

KEventReturn ActorActionDialog::doControlAction(KControlActionEvent& event)
{
    KThing* source = event.getSource();
    if (actorList && source == actorList.get())
        fillMovements(getMovementName());
    else if (actionList && source == actionList.get())
        enableForAction();
    else
        return ElementDialog::doControlAction(event);
    return 1;
}

KString ActorActionDialog::getActorName() const { return actorList ? actorList->getSelectedText() : KString(); }

int32_t ActorActionDialog::getAction() const { return actionList ? actionList->getSelected() + 1 : 0; }

KString ActorActionDialog::getMovementName() const
{
    return movementList ? movementList->getSelectedText() : KString();
}

KString ActorActionDialog::refusal() const
{
    if (getActorName().isEmpty())
        return uiText("No Actor In Project");
    return KString();
}

void ActorActionDialog::applyValues()
{
    auto& action = static_cast<ActorAction&>(*getElement());
    action.setActorName(getActorName());
    action.setAction(getAction());
    action.setMovementName(getMovementName());
    action.setOrderChange(orderList->getSelected());
    action.setSpeed(int32_t(speedField->getValue()));
}
