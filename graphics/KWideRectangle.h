#pragma once

#include "graphics/KBasicRectangle.h"
#include "graphics/KGraphicsForward.h"
#include "graphics/KWidePoint.h"
#include "graphics/KWideSize.h"

// The rectangle of KGraphicRectangle in 32 bits; its origin and size are
// stored as a KWidePoint and a KWideSize record.
class KWideRectangle : public KBasicRectangle<KWideRectangle, int32_t, KWidePoint, KWideSize> {
    K_DECLARE_CLASS(KWideRectangle)
public:
    using KBasicRectangle::KBasicRectangle;

    // Narrows every member to 16 bits.
    KGraphicRectangle toGraphic() const;
};
