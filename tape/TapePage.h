#pragma once

#include "graphics/KGraphicRectangle.h"
#include "graphics/KGraphicSize.h"
#include "kernel/KThing.h"
#include "tape/TapeForward.h"

// The page a tape draws on and the scene of actors above it: what the tape
// needs of the sprite system that owns the page image. All page drawing goes
// through the page's device and ends with a refresh request for the
// changed rectangle.
//
// The sprite system implements this through an adapter; ImageTapePage is
// the plain form over one image, for tests and headless rendering.
class TapePage : public KThing {
    K_DECLARE_CLASS(TapePage)
public:
    TapePage();
    ~TapePage() override;

    // --- The page image ------------------------------------------------------

    virtual KImage& getPageImage() = 0;
    virtual KGraphicDevice& getPageDevice() = 0;
    virtual KGraphicSize getPageSize() = 0;
    // The pixels in the rectangle changed and should be shown again.
    virtual void refresh(const KGraphicRectangle& changed) = 0;
    // The whole page changed.
    virtual void refreshAll();
    // Everything shown, the sprites above the page included, is drawn again.
    virtual void refreshSpriteLayer();

    // --- The scene -------------------------------------------------------------

    // Stops the sprite layer, takes every actor of the tape off the stage and
    // stops its timer.
    virtual void stopActors(Tape& tape);
    // Resets every actor of the tape: stopped, hidden, its state cleared.
    virtual void resetActors(Tape& tape);
    // Replays the actor elements from index `first` up to `limit`
    // (exclusive) into the actors' movements and puts on the stage those
    // that should be there. The actors were stopped just before.
    virtual void synchroniseActors(Tape& tape, int32_t first, int32_t limit);
    // The tape lets go of this page: its actors leave the scene.
    virtual void releaseActors(Tape& tape);

    // The tape's actor of that name, one at a time: showing it and putting
    // it in the actors' layer (false when there is no such actor or no
    // scene); stopping its timer, hiding it and taking it out of the layer;
    // whether it is in the layer and visible. A page without a scene has no
    // actors on it.
    virtual bool putActorOnScene(Tape& tape, const KString& name);
    virtual void removeActorFromScene(Tape& tape, const KString& name);
    virtual bool isActorOnScene(Tape& tape, const KString& name);
    // Brings what changed since the last frame to the screen at once, as
    // the scene's next frame would.
    virtual void drawFrame();

    KGraphicRectangle getPageBounds();

    // While the tape draws the whole page again it refreshes all of it at
    // the end; a page may drop the single elements' refreshes meanwhile.
    void setRebuilding(bool value) { rebuilding = value; }
    bool isRebuilding() const { return rebuilding; }

private:
    bool rebuilding = false;
};
