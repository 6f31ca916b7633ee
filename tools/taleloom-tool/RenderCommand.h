#pragma once

#include "tools/taleloom-tool/ToolCommand.h"

#include <string>
#include <vector>

// taleloom-tool render PROJECT.TPD [--position N] -o PAGE.png
//
// Writes the page as it stands at position N (the number of elements that
// have run; the end when not given, and cut to the end like the tape's own
// navigation) as a PNG file, with the actors that stand on the scene there.
// Needs no display.
ToolCommand renderCommand();

// Renders the project in `path` at `position` (-1 for the end) into the PNG
// file `pngPath`. False with a one-line `reason` when the project cannot be
// read or the picture cannot be written.
bool renderProjectPage(const std::string& path, int32_t position, const std::string& pngPath, std::string& reason,
                       std::vector<std::string>& warnings);
