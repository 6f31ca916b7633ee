#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Every picture the program ships: the palette buttons with their pushed
// forms and masks, the element-kind pictures, the navigation buttons, the
// markers, the cursor, the start-up picture and the desktop icon. They are
// drawn here, so the PNG files under data/ are made, never edited by hand;
// a test checks that the files are what this draws now.
namespace ArtPictures {

struct Picture {
    // Relative to the data folder, such as "art/tool-play.png".
    std::string path;
    int32_t width = 0;
    int32_t height = 0;
    // With alpha: premultiplied 0xAARRGGBB (the desktop icons). Without:
    // 0x00RRGGBB with the top byte cleared. Row by row, no padding.
    bool alpha = false;
    std::vector<uint32_t> pixels;
};

// All pictures, in a fixed order.
std::vector<Picture> makeAll();

// PNG files through cairo.
bool write(const Picture& picture, const std::string& fileName);
// Fills everything but the path; false when the file is not a PNG.
bool read(const std::string& fileName, Picture& out);

// Writes every picture under `dataFolder` and removes the PNG files of
// art/ that no picture names any more.
bool writeAll(const std::string& dataFolder, std::string& reason);

} // namespace ArtPictures
