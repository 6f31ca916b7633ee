#pragma once

#include "project/legacy/ZTapeObject.h"
#include "tape/TapeForward.h"

#include <memory>
#include <vector>

class ZConversion;
class ZFile;

// An old document's tape: its head, the bag of its elements, two timing
// longs and two flag bytes.
class ZTape {
public:
    static constexpr int16_t kPageWidth = 640;
    static constexpr int16_t kPageHeight = 480;

    // Reads the whole tape; a tag with the tape's id before its head is
    // passed over.
    bool readFromFile(ZFile& file);
    // Today's tape: 640 by 480, changed, the first timing long as its
    // position, the second times 2 / 3 as its play interval (1 to 50 ms),
    // the first flag byte as looping, the second as hiding the menu bar and
    // the tools, and every element converted in order.
    TapePtr convert(ZConversion& conversion);

    int32_t getElementCount() const { return int32_t(elements.size()); }

private:
    std::vector<std::unique_ptr<ZTapeObject>> elements;
    int32_t firstTiming = 0;
    int32_t secondTiming = 0;
    bool looping = false;
    bool hidesBars = false;
};
