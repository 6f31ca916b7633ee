#pragma once

#include "project/legacy/ZTapeObject.h"

// An old pause: its length in milliseconds.
class ZStylusPause : public ZTapeObject {
public:
    bool readFromFile(ZFile& file) override;
    TapeObjectPtr convert(ZConversion& conversion) override;

private:
    int32_t duration = 0;
};
