#include "app/AppClasses.h"

#include "app/actors/ActorClasses.h"
#include "app/actors/ActorElementClasses.h"
#include "project/ProjectClasses.h"
#include "tape/TapeClasses.h"

void registerDocumentClasses()
{
    registerTapeClasses();
    registerProjectClasses();
    registerActorClasses();
    registerActorElementClasses();
}
