#pragma once

#include "project/legacy/ZClass.h"

#include <cstdint>
#include <functional>

class ZFile;

// The old array's stream: the head, a long size, a byte that tells direct
// data from objects and, from version 2, a byte that tells direct data
// stored in the other byte order. Direct data is 32-bit values; an object
// array holds per slot a class id (0 for an empty slot) and the object's
// own stream, which the caller reads.
class ZArray {
public:
    struct Visitor {
        // A 32-bit value of a direct array, in this machine's order.
        std::function<void(int32_t slot, uint32_t value)> direct;
        // The object of a slot, of the kind its id names; reads it from the
        // file and answers false to stop.
        std::function<bool(int32_t slot, ZClass::Kind kind)> object;
    };

    // False, with the file's failure, on a damaged stream; `size` is the
    // count of slots.
    static bool read(ZFile& file, const Visitor& visitor, int32_t& size);
};
