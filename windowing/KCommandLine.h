#pragma once

#include "kernel/KString.h"

#include <vector>

// The program's command line: options (a switch character and one known
// letter, such as "-S" or "/S") and file arguments (anything else; a token
// that starts with a quote runs to the closing quote, blanks included).
namespace KCommandLine {

// The letters that make a token an option.
inline constexpr const char* kOptionLetters = "SQPBFW";

// Joins argument strings into one line, quoting those that hold a blank.
KString join(int32_t count, const char* const* arguments);
// Cuts a line into file arguments and options; an option is stored
// without its switch character.
void parse(const KString& line, std::vector<KString>& files, std::vector<KString>& options);

} // namespace KCommandLine
