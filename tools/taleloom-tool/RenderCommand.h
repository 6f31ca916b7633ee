#pragma once

#include "graphics/KGraphicSize.h"
#include "tools/taleloom-tool/ToolCommand.h"

#include <string>
#include <vector>

// taleloom-tool render PROJECT.TPD [--position N] [--size N] -o PAGE.png
//
// Writes the page as it stands at position N (the number of elements that
// have run; the end when not given, and cut to the end like the tape's own
// navigation) as a PNG file, with the actors that stand on the scene there.
// With --size the picture is scaled so that its longer side is N pixels,
// keeping its shape: what file managers ask of a thumbnailer. Needs no
// display.
ToolCommand renderCommand();

// The largest --size taken: a picture side the graphics layer can hold.
constexpr int32_t kLargestPictureSide = 8192;

// The size of a page of `page` scaled so that its longer side is
// `longerSide`, the shorter one rounded and at least 1.
KGraphicSize scaledPageSize(const KGraphicSize& page, int32_t longerSide);

// Renders the project in `path` at `position` (-1 for the end) into the PNG
// file `pngPath`, scaled to `longerSide` when that is above 0. False with a
// one-line `reason` when the project cannot be read or the picture cannot be
// written.
bool renderProjectPage(const std::string& path, int32_t position, const std::string& pngPath, std::string& reason,
                       std::vector<std::string>& warnings, int32_t longerSide = 0);
