#include "kmultimedia/KMultimediaClasses.h"

#include "graphics/KGraphicsClasses.h"
#include "kernel/KClass.h"
#include "kmultimedia/EditSprite.h"
#include "kmultimedia/EditSpriteLayer.h"
#include "kmultimedia/KAbstractMedia.h"
#include "kmultimedia/KAnimationController.h"
#include "kmultimedia/KAnimationObject.h"
#include "kmultimedia/KAnimationPoint.h"
#include "kmultimedia/KAnimationSystem.h"
#include "kmultimedia/KAnimationVector.h"
#include "kmultimedia/KBresenham.h"
#include "kmultimedia/KExtendedSpeech.h"
#include "kmultimedia/KMediaFeedbackEvent.h"
#include "kmultimedia/KMediaManager.h"
#include "kmultimedia/KMediaSupport.h"
#include "kmultimedia/KMovie.h"
#include "kmultimedia/KMovieSupport.h"
#include "kmultimedia/KSound.h"
#include "kmultimedia/KSoundHiliteMarker.h"
#include "kmultimedia/KSoundHiliteMedia.h"
#include "kmultimedia/KSoundRecorder.h"
#include "kmultimedia/KSoundSupport.h"
#include "kmultimedia/KSpeech.h"
#include "kmultimedia/KSpeechException.h"
#include "kmultimedia/KSpeechExceptionHandler.h"
#include "kmultimedia/KSpeechSupport.h"
#include "kmultimedia/KSprite.h"
#include "kmultimedia/KSpriteLayer.h"
#include "kmultimedia/KSpriteSystem.h"
#include "kmultimedia/StylusSpriteSystem.h"
#include "windowing/KWindowingClasses.h"

void kRegisterMultimediaClasses()
{
    kRegisterGraphicsClasses();
    kRegisterWindowingClasses();
    if (KAnimationPoint::classRecord && KClass::hasClass("KAnimationPoint"))
        return;
    KAnimationPoint::registerClass();
    KAnimationVector::registerClass();
    KBresenham::registerClass();
    KAnimationController::registerClass();
    KAnimationObject::registerClass();
    KAnimationSystem::registerClass();
    KSprite::registerClass();
    KSpriteLayer::registerClass();
    KSpriteSystem::registerClass();
    EditSprite::registerClass();
    EditSpriteLayer::registerClass();
    StylusSpriteSystem::registerClass();
    KAbstractMedia::registerClass();
    KMediaFeedbackEvent::registerClass();
    KMediaManager::registerClass();
    KMovie::registerClass();
    KMediaSupport::registerClass();
    KMovieSupport::registerClass();
    KSound::registerClass();
    KSoundSupport::registerClass();
    KSoundRecorder::registerClass();
    KSpeech::registerClass();
    KSpeechSupport::registerClass();
    KExtendedSpeech::registerClass();
    KSpeechException::registerClass();
    KSpeechExceptionHandler::registerClass();
    KSoundHiliteMarker::registerClass();
    KSoundHiliteMedia::registerClass();
    KMediaManager::classRecord->setTransient();
    KMediaSupport::classRecord->setTransient();
    KSpeechExceptionHandler::classRecord->setTransient();
}
