#pragma once

#include "graphics/KColor.h"
#include "project/legacy/ZTapeObject.h"

#include <utility>
#include <vector>

// An old brush stroke: a colour, the brush size and a second short (the
// brush's shape, which today's strokes do not have), and the points.
class ZStroke : public ZTapeObject {
public:
    bool readFromFile(ZFile& file) override;
    TapeObjectPtr convert(ZConversion& conversion) override;

private:
    KColor colour;
    int16_t brushSize = 1;
    int16_t shape = 0;
    std::vector<std::pair<int16_t, int16_t>> points;
};
