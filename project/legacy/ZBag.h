#pragma once

#include "project/legacy/ZArray.h"

// The old bag's stream: its head, the array's level, then the used size,
// the grow size and the least size. Only the used slots count.
class ZBag {
public:
    // Visits every slot; `usedSize` tells how many of them the bag holds.
    static bool read(ZFile& file, const ZArray::Visitor& visitor, int32_t& usedSize);
};
