#pragma once

#include "tools/taleloom-tool/ToolCommand.h"

#include <string>

// taleloom-tool info PROJECT.TPD
//
// Writes the project's page size, position and elements as JSON: for each
// element its index, type number, kind (the class name), whether it is
// active, and its bookmark ("" for none).
ToolCommand infoCommand();

// The JSON of the project in `path` (a UTF-8 file name), ending in a line
// break. False with a one-line `reason` when the file cannot be read or is
// no project document; `warnings` gets the lines a user would have been
// shown while it loaded.
bool projectInfoJson(const std::string& path, std::string& json, std::string& reason,
                     std::vector<std::string>& warnings);
