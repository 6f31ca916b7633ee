#pragma once

#include "graphics/KAlphaImage.h"

// An image used as a tile by KGraphicDevice::fillWithPattern.
class KPattern : public KAlphaImage {
    K_DECLARE_CLASS(KPattern)
public:
    KPattern() = default;
    explicit KPattern(const KGraphicSize& size)
        : KAlphaImage(size)
    {
    }
};
