#pragma once

#include "graphics/KGraphicRectangle.h"
#include "kernel/KString.h"
#include "project/legacy/ZTapeObject.h"

// An old picture, and (`movie`) an old movie: a rectangle, the file's name
// and a flag: white is transparent for a picture, the movie can be stopped.
class ZImage : public ZTapeObject {
public:
    explicit ZImage(bool movie = false)
        : movie(movie)
    {
    }
    bool readFromFile(ZFile& file) override;
    TapeObjectPtr convert(ZConversion& conversion) override;

private:
    bool movie;
    KGraphicRectangle bounds;
    KString fileName;
    bool flag = false;
};
