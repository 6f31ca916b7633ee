#include "app/AppClasses.h"

#include "tape/TapeClasses.h"

void registerDocumentClasses()
{
    registerTapeClasses();
}
