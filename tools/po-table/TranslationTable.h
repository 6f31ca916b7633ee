#pragma once

#include "tools/po-table/PoCatalogue.h"

#include <optional>
#include <string>
#include <vector>

// The PO files turned into the table that the program compiles in, and the
// checks that keep the files and the code's keys in step.

struct TranslationRow {
    std::string key;
    std::vector<std::optional<std::string>> texts; // one per language
};

// Every key that has a usable, sound translation in at least one language,
// sorted. A translation left out is reported with the reason.
std::vector<TranslationRow> collectRows(const std::vector<PoCatalogue>& languages, std::vector<PoProblem>& problems);

// C++ source defining kTranslationRows and kTranslationRowCount (see
// kernel/KTranslationRow.h) for exactly three languages.
std::string writeTable(const std::vector<TranslationRow>& rows);

// What is wrong with the catalogue: the syntax problems of every file; keys
// the code uses (`fresh`, a new extraction) that `templ` lacks or the other
// way round; template keys without a usable translation in a language;
// translations of keys the template does not have (not merged); and
// translations that break their key's rules or leave the Windows set.
std::vector<PoProblem> checkCatalogues(const PoCatalogue& templ, const PoCatalogue& fresh,
                                       const std::vector<PoCatalogue>& languages);
