#pragma once

#include "kernel/KLocalizer.h"

// The program's translations. They are kept as gettext PO files under
// data/locale, which the build compiles into a table (KTranslationRow.h);
// filling a localizer needs no file at run time.
namespace KLocalizerData {

// The language columns in their fixed order. English_TL, the second
// English wording, has a column but no texts.
inline constexpr const char* kLanguages[] = {
    KLocalizer::kFrench,
    KLocalizer::kItalian,
    KLocalizer::kGerman,
    KLocalizer::kEnglishTL,
};

// Adds the language columns that are missing and the compiled translations
// as Windows-set texts, then balances. Returns the translations stored.
int32_t fill(KLocalizer& localizer);

} // namespace KLocalizerData

// The framework's base localizer, alive from the start of the application's
// run to its end. Null outside that span.
KLocalizer* kBaseLocalizer();
// Makes the base localizer and fills it with the compiled translations.
void kCreateBaseLocalizer();
void kDestroyBaseLocalizer();
// The text of `key` in the base localizer's language; the key without one.
KString kBaseTranslate(const char* key);
