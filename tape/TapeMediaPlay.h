#pragma once

#include "kmultimedia/KMultimediaForward.h"

// How the timed elements look at the media they start.

// A medium still sounds while it plays and has not reached its end. A
// medium the media manager has stopped at its end counts as done, though
// its position went back to the start.
bool tapeMediaStillPlays(KAbstractMedia& media);

// Moves a playing medium on when no media manager drives it from the event
// loop (a play without a program around it): otherwise its end would never
// be seen.
void tapeDriveUnmanaged(KAbstractMedia& media);
