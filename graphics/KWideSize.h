#pragma once

#include "graphics/KBasicSize.h"
#include "graphics/KGraphicsForward.h"

// A width and a height in 32 bits.
class KWideSize : public KBasicSize<KWideSize, int32_t> {
    K_DECLARE_CLASS(KWideSize)
public:
    using KBasicSize::KBasicSize;
};
