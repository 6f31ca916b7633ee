#pragma once

#include "tools/taleloom-tool/ToolCommand.h"

#include <string>

// taleloom-tool dump [--sections] FILE
//
// Without --sections: a speech exceptions file (magic "KSPX") or a sound
// highlight file (SHI) is written as JSON of its own form (see
// MediaFileDump.h); any other file is read as a document whatever its magic,
// and its head and named entries are written as JSON. Objects of classes
// this program does not know show as {"class": null, "classId": N}.
// With --sections: writes the raw frame tree (see FrameTree.h).
ToolCommand dumpCommand();

// The JSON of the document in `path` (a UTF-8 file name), ending in a line
// break. False with a one-line `reason` when the file cannot be read, is no
// document, or is damaged.
bool dumpDocumentJson(const std::string& path, std::string& json, std::string& reason);
