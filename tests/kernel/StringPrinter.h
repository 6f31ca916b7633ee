#pragma once

#include "kernel/KString.h"

#include <ostream>

// Lets GoogleTest show a KString's text in failure messages.
inline void PrintTo(const KString& s, std::ostream* out)
{
    *out << '"' << std::string(s.c_str(), size_t(s.getLength())) << "\" (set " << s.getCharSet() << ')';
}
