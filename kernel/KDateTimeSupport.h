#pragma once

#include "kernel/KComparable.h"

#include <cstdint>
#include <ctime>

// Helpers shared by KDate and KTime.
namespace KDateTimeSupport {

// The local calendar time now.
std::tm localNow();

// Compares three fields in order of significance.
inline int32_t compareFields(int16_t a1, int16_t a2, int16_t a3, int16_t b1, int16_t b2, int16_t b3)
{
    if (a1 != b1)
        return a1 < b1 ? -1 : 1;
    if (a2 != b2)
        return a2 < b2 ? -1 : 1;
    if (a3 != b3)
        return a3 < b3 ? -1 : 1;
    return 0;
}

} // namespace KDateTimeSupport
