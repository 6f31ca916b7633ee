#pragma once

#include <cstdint>

// One key of the compiled translation table and its texts, all UTF-8; a
// null text means the language has none. The build makes the table from
// the PO files of data/locale (tools/po-table).
struct KTranslationRow {
    const char* key;
    const char* french;
    const char* italian;
    const char* german;
};

extern const KTranslationRow kTranslationRows[];
extern const int32_t kTranslationRowCount;
