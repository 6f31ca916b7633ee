#pragma once

#include "tools/taleloom-tool/ToolCommand.h"

// taleloom-tool print-book STORY.TPD --per-sheet 1|2|4|9 [--landscape]
//   [--paper a4|letter] [--no-colour-backgrounds] [--no-image-backgrounds]
//   -o BOOK.pdf
// Prints the story as a book into a PDF, through the program's own layout
// at the printer's resolution and with the default margins, and prints
// JSON: pictures, sheets, the paper in points and the time taken.
ToolCommand printBookCommand();
