#pragma once

#include "kernel/KString.h"
#include "project/legacy/ZTapeObject.h"

// An old sound: the name of its file.
class ZStylusSound : public ZTapeObject {
public:
    bool readFromFile(ZFile& file) override;
    TapeObjectPtr convert(ZConversion& conversion) override;

private:
    KString fileName;
};
