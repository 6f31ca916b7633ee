#include "project/ProjectClasses.h"

#include "kernel/KClass.h"
#include "project/KMediaPublisher.h"
#include "project/StylusProject.h"
#include "tape/TapeClasses.h"

void registerProjectClasses()
{
    registerTapeClasses();
    if (StylusProject::classRecord && KClass::hasClass("StylusProject"))
        return;
    StylusProject::registerClass();
    KMediaPublisher::registerClass();
}
