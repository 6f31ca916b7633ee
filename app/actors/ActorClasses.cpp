#include "app/actors/ActorClasses.h"

#include "app/actors/Actor.h"
#include "app/actors/ActorSequence.h"
#include "kernel/KClass.h"
#include "tape/TapeClasses.h"

void registerActorClasses()
{
    // An actor is a sprite and its frames are tapes: those records come
    // first.
    registerTapeClasses();
    if (Actor::classRecord && KClass::hasClass("Actor"))
        return;
    ActorSequence::registerClass();
    Actor::registerClass();
}
