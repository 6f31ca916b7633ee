#pragma once

#include "graphics/KGraphicsForward.h"
#include "tape/TapeForward.h"

// The actors of a thumbnail. Actors are sprites above the page, kept by a
// part of the program the tape does not know; the preview asks this stage
// to follow the actor elements it meets and to draw the actors that stand
// on the page when a thumbnail is made. It keeps its own record of them:
// the live scene is never touched.
class TapePreviewStage {
public:
    virtual ~TapePreviewStage() = default;

    // Forgets every actor: the preview starts a page afresh.
    virtual void clear() = 0;
    // Follows one active element of `tape`: actor actions and motions move
    // the record, a transition that removes actors empties it.
    virtual void apply(Tape& tape, TapeObject& element) = 0;
    // Draws the actors on the stage now over `device`, whose page is `page`.
    virtual void drawOn(Tape& tape, KGraphicDevice& device, const KGraphicRectangle& page) = 0;
};
