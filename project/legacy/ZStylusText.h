#pragma once

#include "graphics/KColor.h"
#include "graphics/KFont.h"
#include "graphics/KGraphicRectangle.h"
#include "kernel/KString.h"
#include "project/legacy/ZTapeObject.h"

// An old text: its rectangle, its styled text, the voice that reads it,
// three flags (transparent, read aloud, wait until read) and from version 2
// the colour that marks the word read and whether words are marked.
class ZStylusText : public ZTapeObject {
public:
    bool readFromFile(ZFile& file) override;
    TapeObjectPtr convert(ZConversion& conversion) override;

private:
    bool readStyledText(ZFile& file);
    bool readStyleInfo(ZFile& file);

    KGraphicRectangle bounds;
    KString text;
    int16_t alignment = 0;
    KString fontName;
    int16_t fontSize = 12;
    int16_t fontFace = 0;
    KColor textColour;
    KString voice;
    bool transparent = true;
    bool speaks = false;
    bool waitForEnd = false;
    bool hasMark = false;
    KColor markColour;
    bool marksWords = false;
};
