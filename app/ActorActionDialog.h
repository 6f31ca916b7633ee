#pragma once

#include "app/ElementDialog.h"

#include <vector>

class KPopUpListNativeControl;
class KSpinFieldNativeControl;

// "Actor": what an actor of the project does at this point of the story:
// enter the scene, leave it, move and resize, jump, change its place in
// the stacking order or its movement, with the movement it plays and the
// speed of a move. The actors offered are those of the project's "Actors"
// folder; without any the dialog says so and stays shut.
class ActorActionDialog : public ElementDialog {
    K_DECLARE_CLASS(ActorActionDialog)
public:
    static constexpr int32_t kWidth = 380;
    static constexpr int32_t kHeight = 260;
    static constexpr int32_t kMaximumSpeed = 100;

    ActorActionDialog();
    ~ActorActionDialog() override;

    KEventReturn doControlAction(KControlActionEvent& event) override;

    KString getActorName() const;
    int32_t getAction() const;
    KString getMovementName() const;
    // The movements of the named actor: the tape's actor when it holds it,
    // else the actor's file; empty when neither is found.
    static std::vector<KString> movementsOf(Tape& tape, const KString& actorName);

protected:
    const char* elementClassName() const override { return "ActorAction"; }
    bool takesElement(const TapeObject& candidate) const override;
    void makeControls() override;
    KString refusal() const override;
    void applyValues() override;

private:
    void fillMovements(const KString& chosen);
    void enableForAction();

    std::vector<KString> actorNames;
    KPtr<KPopUpListNativeControl> actorList;
    KPtr<KPopUpListNativeControl> actionList;
    KPtr<KPopUpListNativeControl> movementList;
    KPtr<KPopUpListNativeControl> orderList;
    KPtr<KSpinFieldNativeControl> speedField;
};
