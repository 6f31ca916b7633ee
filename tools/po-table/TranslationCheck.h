#pragma once

#include <string>
#include <string_view>
#include <vector>

// The rules a translation keeps so that the program can show it.

// The markers a translation must keep from its key: printf-style codes
// ("%s", "%1", "%d") and braced names ("{name}"), in order of appearance.
std::vector<std::string> placeholders(std::string_view text);
// Why `text` cannot stand for `key` (a placeholder lost or added, a lost
// accelerator, ellipsis or edge blank, which joined texts rely on), or ""
// when it can.
std::string checkTranslation(std::string_view key, std::string_view text);

// Why a French `text` breaks the typography French readers expect (a plain
// blank where a no-break space belongs: before ":", ";", "?", "!" and inside
// guillemets), or "". A blank that opens a piece stays plain: it joins.
std::string checkFrenchTypography(std::string_view text);

bool isValidUtf8(std::string_view text);
// True when the Windows character set, the program's own, holds every
// character of the UTF-8 `text`.
bool fitsWindowsSet(std::string_view text);
