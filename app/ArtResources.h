#pragma once

#include "graphics/KAlphaImage.h"
#include "graphics/KGraphicPoint.h"

#include <cstdint>
#include <vector>

// The pictures compiled into the program, by the numeric resource ids the
// program asks for. Each id names one PNG file of data/art (several ids may
// share a file, as the pushed form of a button shares its mask). The files
// are made by tools/make-art.
namespace ArtResources {

// The start-up dialog's picture and its mask.
constexpr int16_t kStartupPicture = 10000;
constexpr int16_t kStartupMask = 10001;
// The tiles of the actor editor's backgrounds.
constexpr int16_t kPatternChecks = 14000;
constexpr int16_t kPatternDots = 14001;
// The navigation palette's step buttons, each a picture and its mask.
constexpr int16_t kNavigationBack = 0x4016;
constexpr int16_t kNavigationBackMask = 0x4017;
constexpr int16_t kNavigationForward = 0x4018;
constexpr int16_t kNavigationForwardMask = 0x4019;
constexpr int16_t kNavigationBeginning = 0x401A;
constexpr int16_t kNavigationBeginningMask = 0x401B;
constexpr int16_t kNavigationEnd = 0x401C;
constexpr int16_t kNavigationEndMask = 0x401D;
// The navigation filter's icons, in the order all, stroke, text, image,
// movie, sound, speech, page transition, wait, pause, actor, macro.
constexpr int16_t kFilterIconBase = 20000;
constexpr int16_t kFilterIconCount = 12;
// A colour button's rounded picture and its mask.
constexpr int16_t kColourButton = 0x55F1;
constexpr int16_t kColourButtonMask = 0x55F2;
// The pointing hand and its mask; its hot spot is the finger's tip.
constexpr int16_t kHandCursor = 0x55F3;
constexpr int16_t kHandCursorMask = 0x55F4;
// The main window's blinking markers, one mask for both.
constexpr int16_t kPauseMarker = 0x55FA;
constexpr int16_t kWaitMarker = 0x55FB;
constexpr int16_t kMarkerMask = 0x55FC;
// The modify button's element picture, by the indicator: 0 an empty tape,
// 1 to 10 the element kinds, 11 to 16 the actor actions by action kind,
// 17 an actor motion. One mask for all.
constexpr int16_t kIndicatorBase = 0x5640;
constexpr int16_t kIndicatorCount = 18;
constexpr int16_t kIndicatorMask = 0x571C;
// The tool palette's buttons: control ids 17 (the size control) to 34
// (wait). Each control has four ids from kToolButtonBase + 4 * (id - 17):
// picture, mask, pushed picture, pushed mask.
constexpr int16_t kToolButtonBase = 23000;
constexpr int32_t kFirstToolControl = 17;
constexpr int32_t kLastToolControl = 34;
// The pictures of elements without a place on the page: the mask, then one
// picture for each element type from kTypeIconBase + 1 (wait) to
// kTypeIconBase + 12 (actor motion).
constexpr int16_t kTypeIconMask = 24000;
constexpr int16_t kTypeIconBase = 24001;

// The id of a palette control's picture, its pushed form when `pushed`;
// the mask's id is one more. -1 for a control without pictures.
int16_t toolButtonPicture(int32_t controlId, bool pushed);

// The file of data/art that the id names; null for an unknown id.
const char* fileNameOf(int16_t id);
// Every id the program knows, ascending.
std::vector<int16_t> allIds();

// Fills `image` with the picture of the id. False, with the image left
// empty, for an unknown id or one whose file is missing from the program.
// This is what the tape host's bitmap resources are.
bool loadImage(int16_t id, KImage& image);
// A picture with its mask, drawn through the mask. Null when either is
// missing.
KAlphaImagePtr loadMaskedPicture(int16_t picture, int16_t mask);
// Where a cursor picture points.
KGraphicPoint cursorHotSpot(int16_t id);

} // namespace ArtResources
