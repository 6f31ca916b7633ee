#include "graphics/KWideSize.h"

#include "graphics/KGraphicsStreams.h"
#include "kernel/KClass.h"
#include "kernel/KFile.h"

K_DEFINE_CLASS(KWideSize, KThing)

KThing* KWideSize::deepCopy() const { return new KWideSize(*this); }

void KWideSize::writeToFile(KFile& file, int32_t)
{
    KGraphicsStreams::writeMainSection(file, classRecord, [&] {
        file.writeLong(width);
        file.writeLong(height);
    });
}

bool KWideSize::readRecord(KFile& file)
{
    int32_t first = 0;
    int32_t second = 0;
    bool read = KGraphicsStreams::readMainSection(file, classRecord, [&] {
        first = file.readLong();
        second = file.readLong();
        return file.getError() == 0;
    });
    if (read) {
        width = first;
        height = second;
    }
    return read;
}

void KWideSize::readFromFile(KFile& file) { readRecord(file); }
