#pragma once

#include "graphics/KGraphicsForward.h"
#include "graphics/KWideRectangle.h"
#include "kernel/KThing.h"

// A set of pixels made of rectangles: the wrapper of a native region, which
// the object owns. Regions have no file form.
class KGraphicRegion : public KThing {
    K_DECLARE_CLASS(KGraphicRegion)
public:
    // An empty region.
    KGraphicRegion();
    explicit KGraphicRegion(const KGraphicRectangle& rectangle);
    explicit KGraphicRegion(const KWideRectangle& rectangle);
    // Takes over a native region handle.
    explicit KGraphicRegion(KNativeRegion* adopted);
    KGraphicRegion(const KGraphicRegion& other);
    KGraphicRegion& operator=(const KGraphicRegion& other);
    ~KGraphicRegion() override;

    KThing* deepCopy() const override;

    // Regions have no file form: both report through the "not implemented"
    // message and neither reads nor writes a byte.
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;

    void set(const KGraphicRectangle& rectangle);
    void set(const KWideRectangle& rectangle);
    void clear();

    bool isEmpty() const;
    // The bounding rectangle; empty for an empty region.
    KWideRectangle getBounds() const;
    bool contains(int32_t x, int32_t y) const;
    bool contains(const KGraphicPoint& p) const;
    // Whether the region is exactly this one rectangle.
    bool isRectangle(const KWideRectangle& rectangle) const;

    // The rectangles the region is made of: sorted by rows (y), then x,
    // without overlaps.
    int32_t getRectangleCount() const;
    KWideRectangle getRectangle(int32_t index) const;

    void uniteWith(const KGraphicRegion& other);
    void uniteWith(const KWideRectangle& rectangle);
    void intersectWith(const KGraphicRegion& other);
    void intersectWith(const KWideRectangle& rectangle);
    void subtract(const KGraphicRegion& other);
    void subtract(const KWideRectangle& rectangle);
    void offset(int32_t dx, int32_t dy);

    // Not implemented: reports through the framework's "not implemented"
    // message and leaves the region alone.
    void inset(int16_t dx, int16_t dy);

    bool operator==(const KGraphicRegion& other) const;
    bool operator!=(const KGraphicRegion& other) const { return !(*this == other); }

    KNativeRegion* getNativeRegion() const { return nativeRegion; }

private:
    KNativeRegion* nativeRegion = nullptr;
};
