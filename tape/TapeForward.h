#pragma once

#include "graphics/KGraphicsForward.h"
#include "kernel/KForward.h"
#include "windowing/KWindowingForward.h"

// Forward declarations of the tape subsystem and its counted references.

class TapeObject;
class TapeGraphicObject;
class Stroke;
class WipeOut;
class StylusImage;
class StylusText;
class StylusMovie;
class StylusSound;
class StylusSpeech;
class StylusPause;
class WaitObject;
class Tape;
class TapePage;
class ImageTapePage;
class TapeHost;
class StrokeRecorder;

using TapeObjectPtr = KPtr<TapeObject>;
using TapeGraphicObjectPtr = KPtr<TapeGraphicObject>;
using StrokePtr = KPtr<Stroke>;
using WipeOutPtr = KPtr<WipeOut>;
using StylusImagePtr = KPtr<StylusImage>;
using StylusTextPtr = KPtr<StylusText>;
using StylusMoviePtr = KPtr<StylusMovie>;
using StylusSoundPtr = KPtr<StylusSound>;
using StylusSpeechPtr = KPtr<StylusSpeech>;
using StylusPausePtr = KPtr<StylusPause>;
using WaitObjectPtr = KPtr<WaitObject>;
using TapePtr = KPtr<Tape>;
using TapePagePtr = KPtr<TapePage>;
using ImageTapePagePtr = KPtr<ImageTapePage>;

// The element kinds by their type numbers. 0 stands for no element; 8 is a
// number of old documents with no class behind it.
enum TapeObjectType : int32_t {
    NoTapeObject = 0,
    WaitType = 1,
    StrokeType = 2,
    TextType = 3,
    SpeechType = 4,
    PauseType = 5,
    SoundType = 6,
    PageTransitionType = 7,
    RelayMacroType = 8,
    MovieType = 9,
    ImageType = 10,
    ActorActionType = 11,
    ActorMotionType = 12,
};
