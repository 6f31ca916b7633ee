#pragma once

#include "project/ProjectForward.h"

#include <cstdint>
#include <string>
#include <vector>

// Opens a project document for a command, without touching the disk: the
// file is read once (no retry, no folders created), and the project names
// the file and its folders afterwards, so that media and actors are found
// beside it. What the program would tell the user in a message box comes
// back as text: the refusal as `reason`, warnings in `warnings`, each one
// line starting with the path.
bool loadToolProject(const std::string& path, StylusProject& project, std::string& reason,
                     std::vector<std::string>& warnings);

// The name of an element's kind as the commands print it: the type table's
// ("Text", "Page Transition"), "Actor Motion" for 12, "Unknown" outside.
const char* toolElementKind(int32_t type);
