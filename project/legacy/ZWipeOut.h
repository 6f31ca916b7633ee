#pragma once

#include "graphics/KColor.h"
#include "kernel/KString.h"
#include "project/legacy/ZTapeObject.h"

// An old page transition: a colour, an image file's name (empty for a
// colour), the effect and its speed, which today's transitions keep in
// their effect.
class ZWipeOut : public ZTapeObject {
public:
    bool readFromFile(ZFile& file) override;
    TapeObjectPtr convert(ZConversion& conversion) override;

private:
    KColor colour;
    KString fileName;
    int32_t effect = 0;
    int32_t speed = 0;
};
