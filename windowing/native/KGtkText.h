#pragma once

#include <string>

// The framework's text is in the Windows character set; GTK's is UTF-8.
std::string kToUtf8(const char* windowsText);
// The Windows-set form of UTF-8 text; characters the set lacks become '?'.
std::string kFromUtf8(const char* utf8Text);
