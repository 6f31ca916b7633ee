#pragma once

#include <iosfwd>
#include <string>
#include <vector>

// Everything the program does once the process is set up: picks the
// subcommand named by the first argument and runs it. Returns the exit
// status; unknown or missing commands print the usage and return 2.
int runTaleloomTool(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

// What the process needs before any command runs: the error table, a fatal
// exit status that is not success, and every class a file may hold.
void prepareTaleloomTool();
