#include "kernel/KLocalizerData.h"

#include "kernel/KTextCodec.h"
#include "kernel/KTranslationRow.h"

namespace KLocalizerData {

namespace {

int32_t columnOf(KLocalizer& localizer, const char* language)
{
    int32_t column = localizer.getLanguageColumn(language);
    if (column == KLocalizer::kEnglishColumn) {
        localizer.addLanguage(language);
        column = localizer.getLanguageCount() - 1;
    }
    return column;
}

} // namespace

int32_t fill(KLocalizer& localizer)
{
    int32_t columns[4];
    for (int32_t i = 0; i < 4; ++i)
        columns[i] = columnOf(localizer, kLanguages[i]);
    int32_t stored = 0;
    for (int32_t i = 0; i < kTranslationRowCount; ++i) {
        const KTranslationRow& row = kTranslationRows[i];
        KString key = KTextCodec::fromUtf8(row.key);
        const char* texts[3] = { row.french, row.italian, row.german };
        for (int32_t language = 0; language < 3; ++language) {
            if (!texts[language])
                continue;
            localizer.addEntry(key, KTextCodec::fromUtf8(texts[language]), columns[language]);
            ++stored;
        }
    }
    localizer.balance();
    return stored;
}

} // namespace KLocalizerData

namespace {

KLocalizerPtr& baseLocalizerHolder()
{
    static KLocalizerPtr holder;
    return holder;
}

} // namespace

KLocalizer* kBaseLocalizer() { return baseLocalizerHolder().get(); }

void kCreateBaseLocalizer()
{
    KLocalizerPtr localizer(new KLocalizer());
    KLocalizerData::fill(*localizer);
    baseLocalizerHolder() = localizer;
}

void kDestroyBaseLocalizer() { baseLocalizerHolder().clear(); }

KString kBaseTranslate(const char* key)
{
    KLocalizer* localizer = kBaseLocalizer();
    return localizer ? localizer->translate(key) : KString(key);
}
