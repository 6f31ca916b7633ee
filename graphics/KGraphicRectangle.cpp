#include "graphics/KGraphicRectangle.h"

#include "graphics/KRectangleMath.h"
#include "graphics/KWideRectangle.h"
#include "graphics/KGraphicsStreams.h"
#include "kernel/KClass.h"
#include "kernel/KFile.h"

K_DEFINE_CLASS(KGraphicRectangle, KThing)

KThing* KGraphicRectangle::deepCopy() const { return new KGraphicRectangle(*this); }

void KGraphicRectangle::set(int16_t newX, int16_t newY, int16_t newWidth, int16_t newHeight)
{
    x = newX;
    y = newY;
    width = newWidth;
    height = newHeight;
}

void KGraphicRectangle::setCorners(int16_t left, int16_t top, int16_t right, int16_t bottom)
{
    KRectangleMath::setCorners(*this, left, top, right, bottom);
}

void KGraphicRectangle::getCorners(int16_t& left, int16_t& top, int16_t& right, int16_t& bottom) const
{
    left = x;
    top = y;
    right = int16_t(x + width);
    bottom = int16_t(y + height);
}

void KGraphicRectangle::setOrigin(const KGraphicPoint& origin)
{
    x = origin.x;
    y = origin.y;
}

void KGraphicRectangle::setSize(const KGraphicSize& size)
{
    width = size.width;
    height = size.height;
}

bool KGraphicRectangle::isEmpty() const { return KRectangleMath::isEmpty(*this); }
bool KGraphicRectangle::contains(const KGraphicPoint& p) const { return KRectangleMath::contains(*this, p.x, p.y); }
bool KGraphicRectangle::contains(int32_t px, int32_t py) const { return KRectangleMath::contains(*this, px, py); }
bool KGraphicRectangle::intersects(const KGraphicRectangle& r) const { return KRectangleMath::intersects(*this, r); }
void KGraphicRectangle::uniteWith(const KGraphicRectangle& r) { KRectangleMath::uniteWith(*this, r); }
void KGraphicRectangle::intersectWith(const KGraphicRectangle& r) { KRectangleMath::intersectWith(*this, r); }
void KGraphicRectangle::grow(int16_t dx, int16_t dy) { KRectangleMath::grow(*this, dx, dy); }
void KGraphicRectangle::shrink(int16_t dx, int16_t dy) { KRectangleMath::shrink(*this, dx, dy); }
void KGraphicRectangle::centreIn(const KGraphicRectangle& r) { KRectangleMath::centreIn(*this, r); }

void KGraphicRectangle::offset(int16_t dx, int16_t dy)
{
    x = int16_t(x + dx);
    y = int16_t(y + dy);
}

bool KGraphicRectangle::operator==(const KGraphicRectangle& other) const
{
    return x == other.x && y == other.y && width == other.width && height == other.height;
}

KWideRectangle KGraphicRectangle::toWide() const { return { x, y, width, height }; }

// The origin as a whole KGraphicPoint record, then the size as a whole KGraphicSize record.
void KGraphicRectangle::writeToFile(KFile& file, int32_t)
{
    KGraphicsStreams::writeMainSection(file, classRecord, [&] {
        KGraphicPoint origin = getOrigin();
        KGraphicSize extent = getSize();
        origin.writeToFile(file, 1);
        extent.writeToFile(file, 1);
    });
}

bool KGraphicRectangle::readRecord(KFile& file)
{
    KGraphicPoint origin;
    KGraphicSize extent;
    bool read = KGraphicsStreams::readMainSection(file, classRecord,
                                                  [&] { return origin.readRecord(file) && extent.readRecord(file); });
    if (read) {
        setOrigin(origin);
        setSize(extent);
    }
    return read;
}

void KGraphicRectangle::readFromFile(KFile& file) { readRecord(file); }
