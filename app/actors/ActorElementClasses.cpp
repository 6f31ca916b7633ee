#include "app/actors/ActorElementClasses.h"

#include "app/SceneTapePage.h"
#include "app/actors/ActorAction.h"
#include "app/actors/ActorClasses.h"
#include "app/actors/ActorMotion.h"
#include "kernel/KClass.h"

void registerActorElementClasses()
{
    registerActorClasses();
    if (ActorAction::classRecord && KClass::hasClass("ActorAction"))
        return;
    ActorAction::registerClass();
    ActorMotion::registerClass();
    SceneTapePage::registerClass();
}
