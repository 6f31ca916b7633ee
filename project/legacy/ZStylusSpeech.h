#pragma once

#include "kernel/KString.h"
#include "project/legacy/ZTapeObject.h"

// Old synthesised speech: the text, the voice and whether the tape waits
// until it is spoken.
class ZStylusSpeech : public ZTapeObject {
public:
    bool readFromFile(ZFile& file) override;
    TapeObjectPtr convert(ZConversion& conversion) override;

private:
    KString text;
    KString voice;
    bool waitForEnd = false;
};
