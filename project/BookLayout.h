#pragma once

#include "graphics/KGraphicRectangle.h"
#include "graphics/KGraphicSize.h"

#include <cstdint>

// Where a printed page and a book's pictures go inside the printable
// rectangle of a sheet of paper. All measures are in the printer's dots;
// plain functions, so that the print job, the PDF of the command-line tool
// and the tests share them.
namespace BookLayout {

// The largest rectangle of the picture's proportions inside `area`,
// centred in it.
KGraphicRectangle fitInto(const KGraphicSize& picture, const KGraphicRectangle& area);

// A single page: the printable area less the footer line below it, the
// page fitted and centred in what is left.
KGraphicRectangle onePage(const KGraphicRectangle& printable, int32_t footerHeight, const KGraphicSize& page);
// The footer line at the bottom of the printable area.
KGraphicRectangle footer(const KGraphicRectangle& printable, int32_t footerHeight);

// A book sheet holds 1, 2, 4 or 9 pictures; anything else is taken as 4.
int32_t validPerSheet(int32_t perSheet);
int32_t sheetCount(int32_t pictures, int32_t perSheet);
// The cell of picture `picture` (counted from 1) on its sheet: the sheet is
// the printable area less the footer, cut into 1x1, 1x2 (2x1 on a sheet
// wider than tall), 2x2 or 3x3 cells in row order, each inset by its gaps.
KGraphicRectangle cell(const KGraphicRectangle& printable, int32_t footerHeight, int32_t perSheet, int32_t picture);

} // namespace BookLayout
