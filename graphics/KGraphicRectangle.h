#pragma once

#include "graphics/KBasicRectangle.h"
#include "graphics/KGraphicPoint.h"
#include "graphics/KGraphicSize.h"
#include "graphics/KGraphicsForward.h"

// A rectangle in device pixels, 16 bits each member; its origin and size
// are stored as a KGraphicPoint and a KGraphicSize record.
class KGraphicRectangle : public KBasicRectangle<KGraphicRectangle, int16_t, KGraphicPoint, KGraphicSize> {
    K_DECLARE_CLASS(KGraphicRectangle)
public:
    using KBasicRectangle::KBasicRectangle;

    KWideRectangle toWide() const;
};
