#pragma once

#include "graphics/KGraphicsForward.h"
#include "kernel/KForward.h"
#include "windowing/KWindowingForward.h"

// Forward declarations of the multimedia subsystem (animation and sprites,
// timed media) and its counted references.

class KAnimationPoint;
class KAnimationVector;
class KBresenham;
class KAnimationController;
class KAnimationObject;
class KAnimationSystem;
class KSprite;
class KSpriteLayer;
class KSpriteSystem;
class EditSprite;
class EditSpriteLayer;
class StylusSpriteSystem;
class KAbstractMedia;
class KMediaFeedbackEvent;
class KMediaManager;
class KMediaSupport;
class KMovie;
class KMovieSupport;
class KSound;
class KSoundSupport;
class KSoundRecorder;
class KSpeech;
class KSpeechSupport;
class KSpeechException;
class KSpeechExceptionHandler;
class KExtendedSpeech;
class KSoundHiliteMarker;
class KSoundHiliteMedia;

using KAnimationPointPtr = KPtr<KAnimationPoint>;
using KAnimationVectorPtr = KPtr<KAnimationVector>;
using KBresenhamPtr = KPtr<KBresenham>;
using KAnimationControllerPtr = KPtr<KAnimationController>;
using KAnimationObjectPtr = KPtr<KAnimationObject>;
using KAnimationSystemPtr = KPtr<KAnimationSystem>;
using KSpritePtr = KPtr<KSprite>;
using KSpriteLayerPtr = KPtr<KSpriteLayer>;
using KSpriteSystemPtr = KPtr<KSpriteSystem>;
using EditSpritePtr = KPtr<EditSprite>;
using EditSpriteLayerPtr = KPtr<EditSpriteLayer>;
using StylusSpriteSystemPtr = KPtr<StylusSpriteSystem>;
using KAbstractMediaPtr = KPtr<KAbstractMedia>;
using KMediaFeedbackEventPtr = KPtr<KMediaFeedbackEvent>;
using KMediaManagerPtr = KPtr<KMediaManager>;
using KMediaSupportPtr = KPtr<KMediaSupport>;
using KMoviePtr = KPtr<KMovie>;
using KMovieSupportPtr = KPtr<KMovieSupport>;
using KSoundPtr = KPtr<KSound>;
using KSoundSupportPtr = KPtr<KSoundSupport>;
using KSoundRecorderPtr = KPtr<KSoundRecorder>;
using KSpeechPtr = KPtr<KSpeech>;
using KSpeechSupportPtr = KPtr<KSpeechSupport>;
using KSpeechExceptionPtr = KPtr<KSpeechException>;
using KSpeechExceptionHandlerPtr = KPtr<KSpeechExceptionHandler>;
using KExtendedSpeechPtr = KPtr<KExtendedSpeech>;
using KSoundHiliteMarkerPtr = KPtr<KSoundHiliteMarker>;
using KSoundHiliteMediaPtr = KPtr<KSoundHiliteMedia>;
