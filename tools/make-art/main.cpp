// make-art DATA_FOLDER: draws the program's pictures into DATA_FOLDER/art
// and its desktop icon into DATA_FOLDER/icons.

#include "tools/make-art/ArtPictures.h"

#include <cstdio>
#include <string>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: make-art DATA_FOLDER\n");
        return 2;
    }
    std::string reason;
    if (!ArtPictures::writeAll(argv[1], reason)) {
        std::fprintf(stderr, "make-art: %s\n", reason.c_str());
        return 1;
    }
    return 0;
}
