#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// One gettext PO or POT file as the translation tools write it: entries of
// msgid and msgstr, strings split over lines and C escapes. Obsolete
// entries ("#~") belong to no catalogue and are skipped; plural forms are
// refused, since the program's keys have none.
struct PoEntry {
    std::string context; // msgctxt, empty when there is none
    std::string key; // msgid, UTF-8 with escapes resolved
    std::string text; // msgstr; empty means untranslated
    std::vector<std::string> flags; // from "#," lines
    bool hasPreviousKey = false; // a "#|" line: msgmerge guessed from a like key
    int32_t line = 0; // of the msgid

    bool isHeader() const { return key.empty() && context.empty(); }
    bool isFuzzy() const;
    // A fuzzy text is used unless msgmerge guessed it from another key: a
    // translator marks a text fuzzy to ask for a review, not to drop it.
    bool isDoubtful() const { return isFuzzy() && hasPreviousKey; }
    bool isUsable() const { return !isHeader() && !text.empty() && !isDoubtful(); }
};

struct PoProblem {
    std::string file;
    int32_t line = 0;
    std::string message;
};

struct PoCatalogue {
    std::string name;
    std::vector<PoEntry> entries; // header included
    std::vector<PoProblem> problems;
    std::map<std::string, size_t, std::less<>> index; // key without context -> entry

    // The entry of `key` without a context, or null.
    const PoEntry* find(std::string_view key) const;
};

// Parses the contents of one file; `name` labels the problems.
PoCatalogue parsePo(std::string_view contents, const std::string& name);
// Reads and parses the file at `path`; a file that cannot be read is one
// problem.
PoCatalogue readPo(const std::string& path);
