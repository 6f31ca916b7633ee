#pragma once

#include "graphics/KGraphicRectangle.h"
#include "graphics/KGraphicSize.h"
#include "kernel/KString.h"

// How large an actor may be made on the scene, and the refusal to edit an
// actor painted for a larger screen than this one.

// The maximum of the edit rectangle while "LimitActorSize" is set.
constexpr int16_t kActorMaximumWidth = 320;
constexpr int16_t kActorMaximumHeight = 240;

// The maximum fitted to an aspect ratio (width / height) that the rectangle
// keeps: the side that would let the other exceed its own maximum shrinks.
// A ratio of 0 or less means the rectangle keeps no ratio, and the maximum
// stands as it is.
KGraphicSize fitActorMaximum(const KGraphicSize& maximum, double aspectRatio);

// A rectangle being sized by the handle `handle` (the codes of EditSprite's
// hit test) cut to the maximum: the width and the height are cut, and the
// side opposite the handle stays where it is.
KGraphicRectangle limitDraggedRectangle(const KGraphicRectangle& rectangle, int16_t handle,
                                        const KGraphicSize& maximum);

// "This actor's resolution (wxh) exceeds the screen resolution (WxH); this
// actor cannot be opened for editing.", in the user's language.
KString actorResolutionRefusal(int32_t width, int32_t height, int32_t screenWidth, int32_t screenHeight);

// Whether an actor painted for the page size may be edited on the screen.
bool actorFitsScreen(int32_t pageWidth, int32_t pageHeight, int32_t screenWidth, int32_t screenHeight);
