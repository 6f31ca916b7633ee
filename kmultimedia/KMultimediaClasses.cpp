#include "kmultimedia/KMultimediaClasses.h"

#include "graphics/KGraphicsClasses.h"
#include "kernel/KClass.h"
#include "kmultimedia/KAnimationController.h"
#include "kmultimedia/KAnimationObject.h"
#include "kmultimedia/KAnimationPoint.h"
#include "kmultimedia/KAnimationSystem.h"
#include "kmultimedia/KAnimationVector.h"
#include "kmultimedia/KBresenham.h"
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
}
