#pragma once

#include "tools/taleloom-tool/ToolCommand.h"

// taleloom-tool previews PROJECT.TPD -o DIR
// Builds every thumbnail of the story as the program does in its idle
// time, writes one PNG per position into DIR ("0001.png" for position 1)
// and prints JSON with the work's times: each state's total and the
// longest single step.
ToolCommand previewsCommand();
