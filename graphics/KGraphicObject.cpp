#include "graphics/KGraphicObject.h"

#include "graphics/KGraphicsStreams.h"
#include "kernel/KClass.h"
#include "kernel/KFile.h"

K_DEFINE_ABSTRACT_CLASS(KGraphicObject, KThing)

void KGraphicObject::writeToFile(KFile& file, int32_t)
{
    KGraphicsStreams::writeMainSection(file, classRecord, [&] { bounds.writeToFile(file, 1); });
}

bool KGraphicObject::readRecord(KFile& file)
{
    KGraphicRectangle read;
    if (!KGraphicsStreams::readMainSection(file, classRecord, [&] { return read.readRecord(file); }))
        return false;
    bounds = read;
    return true;
}

void KGraphicObject::readFromFile(KFile& file) { readRecord(file); }
