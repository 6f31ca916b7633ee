#include "graphics/KGraphicPoint.h"

#include "graphics/KGraphicsStreams.h"
#include "kernel/KClass.h"
#include "kernel/KFile.h"

K_DEFINE_CLASS(KGraphicPoint, KThing)

KThing* KGraphicPoint::deepCopy() const { return new KGraphicPoint(*this); }

KGraphicPoint& KGraphicPoint::operator+=(const KGraphicPoint& other)
{
    *this = *this + other;
    return *this;
}

KGraphicPoint& KGraphicPoint::operator-=(const KGraphicPoint& other)
{
    *this = *this - other;
    return *this;
}

void KGraphicPoint::offset(int16_t dx, int16_t dy)
{
    x = int16_t(x + dx);
    y = int16_t(y + dy);
}

void KGraphicPoint::writeToFile(KFile& file, int32_t)
{
    KGraphicsStreams::writeMainSection(file, classRecord, [&] {
        file.writeShort(x);
        file.writeShort(y);
    });
}

bool KGraphicPoint::readRecord(KFile& file)
{
    int16_t first = 0;
    int16_t second = 0;
    bool read = KGraphicsStreams::readMainSection(file, classRecord, [&] {
        first = file.readShort();
        second = file.readShort();
        return file.getError() == 0;
    });
    if (read) {
        x = first;
        y = second;
    }
    return read;
}

void KGraphicPoint::readFromFile(KFile& file) { readRecord(file); }
