#include "kmultimedia/KAnimationPoint.h"

#include "graphics/KGraphicPoint.h"
#include "graphics/KGraphicsStreams.h"
#include "kernel/KClass.h"
#include "kernel/KFile.h"

K_DEFINE_CLASS(KAnimationPoint, KThing)

KAnimationPoint::KAnimationPoint(const KGraphicPoint& p)
    : x(float(p.x))
    , y(float(p.y))
{
}

KAnimationPoint& KAnimationPoint::operator=(const KGraphicPoint& p)
{
    set(float(p.x), float(p.y));
    return *this;
}

KThing* KAnimationPoint::deepCopy() const { return new KAnimationPoint(*this); }

KAnimationPoint& KAnimationPoint::operator+=(const KAnimationVector& v)
{
    x += v.x;
    y += v.y;
    return *this;
}

void KAnimationPoint::writeToFile(KFile& file, int32_t)
{
    KGraphicsStreams::writeMainSection(file, classRecord, [&] {
        file.writeFloat(x);
        file.writeFloat(y);
    });
}

bool KAnimationPoint::readRecord(KFile& file)
{
    float newX = 0.0f;
    float newY = 0.0f;
    bool read = KGraphicsStreams::readMainSection(file, classRecord, [&] {
        newX = file.readFloat();
        newY = file.readFloat();
        return file.getError() == 0;
    });
    if (read)
        set(newX, newY);
    return read;
}

void KAnimationPoint::readFromFile(KFile& file) { readRecord(file); }
