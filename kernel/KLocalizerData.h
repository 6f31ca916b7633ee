#pragma once

#include "kernel/KLocalizer.h"

#include <string>
#include <string_view>
#include <vector>

// The readable form of the translations: one UTF-8 text file per language
// under <data>/locale, reviewed like code. Each line is
//
//     English key<TAB>translation
//
// with "\t", "\n", "\\" and "\#" as escapes; blank lines and lines that
// begin with "#" are comments. A bad line is reported with its file and
// line number and skipped: the data never stops the program.
namespace KLocalizerData {

struct LanguageFile {
    const char* language; // the column's name, in the Windows set
    const char* fileName;
};
// The language columns in their fixed order.
inline constexpr LanguageFile kLanguageFiles[] = {
    { KLocalizer::kFrench, "fr.txt" },
    { KLocalizer::kItalian, "it.txt" },
    { KLocalizer::kGerman, "de.txt" },
    { KLocalizer::kEnglishTL, "en_TL.txt" },
};

struct Entry {
    std::string key; // UTF-8, escapes resolved
    std::string text;
    int32_t line = 0;
};

struct Problem {
    std::string file;
    int32_t line = 0;
    std::string message;
};

struct ParsedFile {
    bool opened = false;
    std::vector<Entry> entries;
    std::vector<Problem> problems;
};

// Resolves the escapes of one field; false with `error` set for a bad one.
bool unescape(std::string_view field, std::string& out, std::string& error);
std::string escape(std::string_view text);

// The markers a translation must keep from its key: printf-style codes
// ("%s", "%1", "%d") and braced names ("{name}"), in order of appearance.
std::vector<std::string> placeholders(std::string_view text);
// Why `text` cannot stand for `key` (a lost placeholder, accelerator,
// ellipsis or edge blank, which joined texts rely on), or "" when it can.
std::string checkTranslation(std::string_view key, std::string_view text);

// Parses a whole file's contents; `name` labels the problems.
ParsedFile parse(std::string_view contents, const std::string& name);
// Reads and parses the file at `path` (UTF-8 path).
ParsedFile readFile(const std::string& path);

// Stores the file's entries in `column` as Windows-set texts, reporting
// each problem on stderr. Returns the number of translations stored.
int32_t loadLanguageFile(KLocalizer& localizer, int32_t column, const std::string& path);

// The data folder: $TALELOOM_DATA_DIR, else "data" beside the program or
// one or two folders above it, else <prefix>/share/taleloom/data, else the
// source tree's data folder named by $TALELOOM_TEST_SOURCE_DIR. Empty when
// none has a "locale" folder.
std::string findDataDirectory();

// Adds the four language columns and every language file found in
// `localeDirectory`, then balances. Returns the translations stored.
int32_t fill(KLocalizer& localizer, const std::string& localeDirectory);

} // namespace KLocalizerData

// The framework's base localizer, alive from the start of the application's
// run to its end. Null outside that span.
KLocalizer* kBaseLocalizer();
// Makes the base localizer and fills it from the data folder.
void kCreateBaseLocalizer();
void kDestroyBaseLocalizer();
// The text of `key` in the base localizer's language; the key without one.
KString kBaseTranslate(const char* key);
