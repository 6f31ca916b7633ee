#pragma once

#include <iosfwd>
#include <string>
#include <vector>

// One subcommand of taleloom-tool. `run` gets the arguments after the
// command's name and returns the exit status: 0 done, 1 the input could not
// be used (a one-line reason on `err`), 2 a usage error.
struct ToolCommand {
    const char* name;
    // The arguments as the usage line shows them, e.g. "[--sections] FILE".
    const char* arguments;
    int (*run)(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);
};

// Exit statuses shared by the commands.
constexpr int kToolSucceeded = 0;
constexpr int kToolBadInput = 1;
constexpr int kToolUsageError = 2;

// Writes "usage: taleloom-tool NAME ARGUMENTS" to `err` and returns 2.
int toolUsageError(const ToolCommand& command, std::ostream& err);
// Writes "taleloom-tool: MESSAGE" to `err` and returns 1.
int toolInputError(const std::string& message, std::ostream& err);
