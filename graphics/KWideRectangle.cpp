#include "graphics/KWideRectangle.h"

#include "graphics/KGraphicRectangle.h"
#include "graphics/KRectangleMath.h"
#include "graphics/KGraphicsStreams.h"
#include "kernel/KClass.h"
#include "kernel/KFile.h"

K_DEFINE_CLASS(KWideRectangle, KThing)

KThing* KWideRectangle::deepCopy() const { return new KWideRectangle(*this); }

void KWideRectangle::set(int32_t newX, int32_t newY, int32_t newWidth, int32_t newHeight)
{
    x = newX;
    y = newY;
    width = newWidth;
    height = newHeight;
}

void KWideRectangle::setCorners(int32_t left, int32_t top, int32_t right, int32_t bottom)
{
    KRectangleMath::setCorners(*this, left, top, right, bottom);
}

void KWideRectangle::getCorners(int32_t& left, int32_t& top, int32_t& right, int32_t& bottom) const
{
    left = x;
    top = y;
    right = int32_t(KRectangleMath::right(*this));
    bottom = int32_t(KRectangleMath::bottom(*this));
}

void KWideRectangle::setOrigin(const KWidePoint& origin)
{
    x = origin.x;
    y = origin.y;
}

void KWideRectangle::setSize(const KWideSize& size)
{
    width = size.width;
    height = size.height;
}

bool KWideRectangle::isEmpty() const { return KRectangleMath::isEmpty(*this); }
bool KWideRectangle::contains(const KWidePoint& p) const { return KRectangleMath::contains(*this, p.x, p.y); }
bool KWideRectangle::contains(int32_t px, int32_t py) const { return KRectangleMath::contains(*this, px, py); }
bool KWideRectangle::intersects(const KWideRectangle& r) const { return KRectangleMath::intersects(*this, r); }
void KWideRectangle::uniteWith(const KWideRectangle& r) { KRectangleMath::uniteWith(*this, r); }
void KWideRectangle::intersectWith(const KWideRectangle& r) { KRectangleMath::intersectWith(*this, r); }
void KWideRectangle::grow(int32_t dx, int32_t dy) { KRectangleMath::grow(*this, dx, dy); }
void KWideRectangle::shrink(int32_t dx, int32_t dy) { KRectangleMath::shrink(*this, dx, dy); }
void KWideRectangle::centreIn(const KWideRectangle& r) { KRectangleMath::centreIn(*this, r); }

void KWideRectangle::offset(int32_t dx, int32_t dy)
{
    x = int32_t(uint32_t(x) + uint32_t(dx));
    y = int32_t(uint32_t(y) + uint32_t(dy));
}

bool KWideRectangle::operator==(const KWideRectangle& other) const
{
    return x == other.x && y == other.y && width == other.width && height == other.height;
}

KGraphicRectangle KWideRectangle::toGraphic() const { return { int16_t(x), int16_t(y), int16_t(width), int16_t(height) }; }

// The origin as a whole KWidePoint record, then the size as a whole KWideSize record.
void KWideRectangle::writeToFile(KFile& file, int32_t)
{
    KGraphicsStreams::writeMainSection(file, classRecord, [&] {
        KWidePoint origin = getOrigin();
        KWideSize extent = getSize();
        origin.writeToFile(file, 1);
        extent.writeToFile(file, 1);
    });
}

bool KWideRectangle::readRecord(KFile& file)
{
    KWidePoint origin;
    KWideSize extent;
    bool read = KGraphicsStreams::readMainSection(file, classRecord,
                                                  [&] { return origin.readRecord(file) && extent.readRecord(file); });
    if (read) {
        setOrigin(origin);
        setSize(extent);
    }
    return read;
}

void KWideRectangle::readFromFile(KFile& file) { readRecord(file); }
