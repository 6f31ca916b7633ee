#pragma once

#include "kernel/KString.h"

#include <string>
#include <string_view>

// The one crossing between the framework's 8-bit text and the UTF-8 of the
// platform's libraries (GTK, pango, espeak-ng, file names, key files).
//
// Neither direction fails as a whole: a character that the Windows set
// cannot hold becomes "?", and invalid UTF-8 is read as such characters. The
// five bytes the Windows set leaves undefined (0x81, 0x8D, 0x8F, 0x90, 0x9D)
// travel as the C1 controls of the same number, so they come back unchanged.
namespace KTextCodec {

// The text in UTF-8; a string in the Macintosh set is read as such.
std::string toUtf8(const KString& text);
std::string toUtf8(std::string_view windowsText);
// A string in the host set.
KString fromUtf8(std::string_view utf8);

} // namespace KTextCodec
