#pragma once

#include "project/legacy/ZImage.h"

// An old movie: the stream of a picture under its own class.
class ZSTMovie : public ZImage {
public:
    ZSTMovie()
        : ZImage(true)
    {
    }
};
