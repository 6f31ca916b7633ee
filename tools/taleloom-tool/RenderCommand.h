#pragma once

#include "graphics/KGraphicSize.h"
#include "tools/taleloom-tool/ToolCommand.h"

#include <string>
#include <vector>

// taleloom-tool render PROJECT.TPD [--position N] [--size N] [--lit E:S:L] [--no-texts] -o PAGE.png
//
// Writes the page as it stands at position N (the number of elements that
// have run; the end when not given, and cut to the end like the tape's own
// navigation) as a PNG file, with the actors that stand on the scene there.
// With --size the picture is scaled so that its longer side is N pixels,
// keeping its shape: what file managers ask of a thumbnailer. With --lit
// the text element at index E is drawn over the page with L characters
// from S marked, as a word is lit while it is read aloud. With --no-texts
// the texts are left out, for a book that sets them as words of its own.
// Needs no display.
ToolCommand renderCommand();

// A range of a text element's characters to show lit.
struct RenderMark {
    int32_t element = -1;
    int32_t start = 0;
    int32_t length = 0;
};

// "E:S:L" with three numbers; false when it is not.
bool parseRenderMark(const std::string& text, RenderMark& mark);

// The largest --size taken: a picture side the graphics layer can hold.
constexpr int32_t kLargestPictureSide = 8192;

// The size of a page of `page` scaled so that its longer side is
// `longerSide`, the shorter one rounded and at least 1.
KGraphicSize scaledPageSize(const KGraphicSize& page, int32_t longerSide);

// Renders the project in `path` at `position` (-1 for the end) into the PNG
// file `pngPath`, scaled to `longerSide` when that is above 0, with the mark
// when one is given. False with a one-line `reason` when the project cannot
// be read, the marked element is not a text, or the picture cannot be
// written.
bool renderProjectPage(const std::string& path, int32_t position, const std::string& pngPath, std::string& reason,
                       std::vector<std::string>& warnings, int32_t longerSide = 0, const RenderMark* mark = nullptr,
                       bool withoutTexts = false);
