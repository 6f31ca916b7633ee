#pragma once

#include "app/AppForward.h"
#include "graphics/KGraphicsForward.h"
#include "kernel/KString.h"
#include "kernel/KThing.h"
#include "kernel/KThingPtr.h"
#include "tape/TapeForward.h"

#include <vector>

class KDirectory;

// The actor editor: an actor's movements are drawn frame by frame, each
// frame a tape that the main window shows as its page (window mode 2)
// while the story's tape waits aside. The actor's file is NAME.ACT in the
// project's "Actors" folder; an actor is edited only in a project that has
// a name, since that is where its file goes.
//
// Every question and message goes through the native layer's alerts and
// the selector dialog, so tests answer them from a script.
class ActorEditor : public KThing {
    K_DECLARE_CLASS(ActorEditor)
public:
    ActorEditor();
    ~ActorEditor() override;
    static ActorEditor* current();

    bool isEditing() const;
    Actor* getActor() const;
    int32_t getMovement() const { return movement; }
    int32_t getFrame() const { return frame; }
    // The actor, one of its frames, or its movements changed since it was
    // opened or saved.
    bool hasChanges() const;
    void markChanged() { changed = true; }
    // "Actor: NAME - MOVEMENT - Frame N".
    KString titleText() const;

    // --- The actor --------------------------------------------------------------
    void doNewActor();
    void doEditActor();
    void doImportActor();
    void doDuplicateActor();
    // Saves over the actor's file; an actor without one asks its name.
    bool doSaveActor();
    bool doSaveActorAs();
    void doEndActorEditing();
    // "Save Changes?" for the actor; 1 cancel, 2 yes (and saved), 3 no.
    int32_t saveActorChanges();

    // --- Movements and frames ------------------------------------------------------
    void newMovement();
    void duplicateMovement();
    void removeMovement();
    void editOtherMovement();
    void editParameters();
    // Mirrors every frame of the movement, or the frame shown, across the
    // middle of the page.
    void flipMovement(bool horizontal);
    void flipFrame(bool horizontal);
    void newFrame();
    void duplicateFrame();
    void removeFrame();
    void editOtherFrame();
    // Shows frame `frameIndex` of movement `movementIndex`, cut to what
    // the actor has.
    void showFrame(int32_t movementIndex, int32_t frameIndex);

    // --- The stage's background --------------------------------------------------
    // What lies behind a frame: nothing, a black or a white chequer, or a
    // picture the user chose, as it is or stretched over the stage.
    enum class Background : int32_t { None = 0, BlackChequer = 1, WhiteChequer = 2, Picture = 3, StretchedPicture = 4 };
    static constexpr int16_t kChequerSide = 16;
    void setBackground(Background chosen);
    Background getBackground() const { return background; }
    // Asks for the picture, in the project's "Actors" folder first; false
    // when cancelled or unreadable (then told), and the background stays.
    bool chooseBackgroundPicture();
    bool hasBackgroundPicture() const;
    void drawBackground(KGraphicDevice& device, const KGraphicRectangle& stage) const;

    // The actor names of the project's "Actors" folder, sorted.
    static std::vector<KString> actorNamesIn(const KDirectory& folder);

private:
    KDirectory* actorsFolder() const;
    bool mayStart(const KString& title) const;
    void startEditing(Actor& edited, bool isNew);
    void endEditing();
    ActorSequence* currentMovement() const;
    // Asks a name until it is free and sound; false when cancelled.
    bool askNewActorName(const KString& title, const KString& label, KString& name) const;
    bool saveTo(const KString& name);
    void clearChanges();
    void flip(Tape& frame, bool horizontal) const;

    ActorPtr actor;
    TapePtr storyTape;
    KImagePtr backgroundPicture;
    Background background = Background::BlackChequer;
    int32_t movement = 0;
    int32_t frame = 0;
    bool changed = false;
};
