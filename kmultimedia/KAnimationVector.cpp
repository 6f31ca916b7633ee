#include "kmultimedia/KAnimationVector.h"

#include "graphics/KGraphicsStreams.h"
#include "kernel/KClass.h"
#include "kernel/KFile.h"

K_DEFINE_CLASS(KAnimationVector, KThing)

KThing* KAnimationVector::deepCopy() const { return new KAnimationVector(*this); }

KAnimationVector& KAnimationVector::operator+=(const KAnimationVector& other)
{
    x += other.x;
    y += other.y;
    return *this;
}

KAnimationVector KAnimationVector::operator+(const KAnimationVector& other) const { return { x + other.x, x + other.y }; }

KAnimationVector KAnimationVector::operator*(const KAnimationVector& other) const { return { x * other.x, x * other.y }; }

void KAnimationVector::writeToFile(KFile& file, int32_t)
{
    KGraphicsStreams::writeMainSection(file, classRecord, [&] {
        file.writeFloat(x);
        file.writeFloat(y);
    });
}

bool KAnimationVector::readRecord(KFile& file)
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

void KAnimationVector::readFromFile(KFile& file) { readRecord(file); }
