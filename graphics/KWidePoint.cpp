#include "graphics/KWidePoint.h"

#include "graphics/KGraphicsStreams.h"
#include "kernel/KClass.h"
#include "kernel/KFile.h"

K_DEFINE_CLASS(KWidePoint, KThing)

namespace {

// Wrapping 32-bit arithmetic without signed overflow.
int32_t wrapAdd(int32_t a, int32_t b) { return int32_t(uint32_t(a) + uint32_t(b)); }
int32_t wrapSub(int32_t a, int32_t b) { return int32_t(uint32_t(a) - uint32_t(b)); }

} // namespace

KThing* KWidePoint::deepCopy() const { return new KWidePoint(*this); }

KWidePoint KWidePoint::operator+(const KWidePoint& other) const { return { wrapAdd(x, other.x), wrapAdd(y, other.y) }; }
KWidePoint KWidePoint::operator-(const KWidePoint& other) const { return { wrapSub(x, other.x), wrapSub(y, other.y) }; }
KWidePoint KWidePoint::operator-() const { return { wrapSub(0, x), wrapSub(0, y) }; }

KWidePoint& KWidePoint::operator+=(const KWidePoint& other)
{
    *this = *this + other;
    return *this;
}

KWidePoint& KWidePoint::operator-=(const KWidePoint& other)
{
    *this = *this - other;
    return *this;
}

void KWidePoint::offset(int32_t dx, int32_t dy)
{
    x = wrapAdd(x, dx);
    y = wrapAdd(y, dy);
}

void KWidePoint::writeToFile(KFile& file, int32_t)
{
    KGraphicsStreams::writeMainSection(file, classRecord, [&] {
        file.writeLong(x);
        file.writeLong(y);
    });
}

bool KWidePoint::readRecord(KFile& file)
{
    int32_t first = 0;
    int32_t second = 0;
    bool read = KGraphicsStreams::readMainSection(file, classRecord, [&] {
        first = file.readLong();
        second = file.readLong();
        return file.getError() == 0;
    });
    if (read) {
        x = first;
        y = second;
    }
    return read;
}

void KWidePoint::readFromFile(KFile& file) { readRecord(file); }
