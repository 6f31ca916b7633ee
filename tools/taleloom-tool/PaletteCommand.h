#pragma once

#include "app/ColorPaletteFile.h"
#include "tools/taleloom-tool/ToolCommand.h"

#include <cstdint>
#include <string>
#include <vector>

class KImage;

// taleloom-tool palette write-default OUT.SCP
// taleloom-tool palette read FILE.SCP
// taleloom-tool palette render --state short|full [--palette F.SCP] [--size N] [--scale S] [--mode M] -o P.png
//
// write-default writes the palette of the default colours, as the buttons
// save them. read prints the colours a palette file names as JSON: its
// form ("document" or "old") and, for each button it names, the button's
// number and its 16-bit channels; a file that is no palette is refused
// with the program's own message. render draws the tool palette short or
// full, with the colours of a palette file, the brush size N (4 to 128,
// default 32) and the scale 1, 1.5 or 2, as it stands in window mode M
// (0 to 4 with an empty story; by default every control is on). Needs no
// display.
ToolCommand paletteCommand();

struct PaletteRenderRequest {
    bool full = true;
    std::string palette;
    int32_t brushSize = 32;
    double scale = 1.0;
    // -1: every control on.
    int32_t windowMode = -1;
};

// Draws the palette into `picture`. False with a one-line `reason` when the
// palette file cannot be read.
bool renderToolPalette(const PaletteRenderRequest& request, KImage& picture, std::string& reason);

// The JSON that read prints.
std::string paletteJson(const ColorPaletteFile::Colors& colors, ColorPaletteFile::Form form);

// The default colours, all 16 of them.
ColorPaletteFile::Colors defaultPaletteColors();
