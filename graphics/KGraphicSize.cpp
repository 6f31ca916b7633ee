#include "graphics/KGraphicSize.h"

#include "graphics/KGraphicsStreams.h"
#include "kernel/KClass.h"
#include "kernel/KFile.h"

K_DEFINE_CLASS(KGraphicSize, KThing)

KThing* KGraphicSize::deepCopy() const { return new KGraphicSize(*this); }

void KGraphicSize::writeToFile(KFile& file, int32_t)
{
    KGraphicsStreams::writeMainSection(file, classRecord, [&] {
        file.writeShort(width);
        file.writeShort(height);
    });
}

bool KGraphicSize::readRecord(KFile& file)
{
    int16_t first = 0;
    int16_t second = 0;
    bool read = KGraphicsStreams::readMainSection(file, classRecord, [&] {
        first = file.readShort();
        second = file.readShort();
        return file.getError() == 0;
    });
    if (read) {
        width = first;
        height = second;
    }
    return read;
}

void KGraphicSize::readFromFile(KFile& file) { readRecord(file); }
