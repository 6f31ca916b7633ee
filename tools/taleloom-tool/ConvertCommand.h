#pragma once

#include "tools/taleloom-tool/ToolCommand.h"

// taleloom-tool convert OLD.STT --platform mac|windows --folder DIR --name N
// Converts a document of the program's older generation into the new
// project DIR/N, as the program does after its questions, and prints JSON:
// the document written, elements per kind, media copied, media missing or
// unreadable, and old records skipped.
ToolCommand convertCommand();
