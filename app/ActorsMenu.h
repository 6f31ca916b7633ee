#pragma once

#include "windowing/KMenu.h"

class ActorEditor;

// "Actors", always in the bar: its first four items work in tape editing,
// the others while an actor is being edited. The Movement, Frame and
// Window Background sub-menus work on the actor being edited; the window
// background is one of four, ticked, with "Stretch" beside.
class ActorsMenu : public KMenu {
    K_DECLARE_CLASS(ActorsMenu)
public:
    enum Item : int32_t {
        NewActor = 1,
        ImportActor = 2,
        DuplicateActor = 3,
        EditActor = 4,
        SaveActor = 5,
        SaveActorAs = 6,
        EndActorEditing = 7,
        NewMovement = 9,
        DuplicateMovement = 10,
        RemoveMovement = 11,
        FlipMovementHorizontal = 12,
        FlipMovementVertical = 13,
        EditParameters = 14,
        EditOtherMovement = 15,
        NewFrame = 17,
        DuplicateFrame = 18,
        RemoveFrame = 19,
        FlipFrameHorizontal = 20,
        FlipFrameVertical = 21,
        EditOtherFrame = 22,
        BackgroundNone = 24,
        BackgroundBlack = 25,
        BackgroundWhite = 26,
        BackgroundCustom = 27,
        Stretch = 28,
    };

    ActorsMenu();
    ~ActorsMenu() override;
    KMenu& getMovementMenu() const;
    KMenu& getFrameMenu() const;
    KMenu& getBackgroundMenu() const;
    // The page-rebuild mode the background items stand for: None 0,
    // Black 1, White 2, Custom 3, Custom stretched 4.
    int32_t getBackgroundMode() const;

    KEventReturn doOpen(KMenuEvent& event) override;
    KEventReturn doMenuItem(KMenuEvent& event) override;

private:
    // The sub-menus' items come back to this menu.
    void openParts(bool actor);
    static bool runCommand(ActorEditor& editor, int32_t id);
    void chooseBackground(ActorEditor& editor, int32_t id);
    KThingPtr movement;
    KThingPtr frame;
    KThingPtr background;
};
