#pragma once

#include "graphics/KGraphicPoint.h"
#include "graphics/KGraphicRectangle.h"
#include "graphics/KGraphicsForward.h"
#include "kernel/KThing.h"

// The abstract root of what can draw itself on a device: images and text
// objects. `bounds` is its own rectangle.
class KGraphicObject : public KThing {
    K_DECLARE_CLASS(KGraphicObject)
public:
    KGraphicObject() = default;
    KGraphicObject(const KGraphicObject& other) = default;
    KGraphicObject& operator=(const KGraphicObject& other) = default;

    virtual KGraphicRectangle getBounds() const { return bounds; }
    // Draws the part `source` (in its own coordinates) scaled into `target`.
    virtual void drawRegion(KGraphicDevice& device, const KGraphicRectangle& source, const KGraphicRectangle& target)
        = 0;
    // Draws the whole, scaled into `target`.
    virtual void drawIn(KGraphicDevice& device, const KGraphicRectangle& target) = 0;
    // Draws the whole at its natural size with its origin at `p`.
    virtual void drawAt(KGraphicDevice& device, const KGraphicPoint& p) = 0;

    // The record of a graphic object is its bounds, as a whole
    // KGraphicRectangle record.
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    // False, with the bounds as they were, when the record is damaged.
    bool readRecord(KFile& file);

protected:
    KGraphicRectangle bounds;
};
