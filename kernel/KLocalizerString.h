#pragma once

#include "kernel/KArray.h"
#include "kernel/KString.h"

// One row of a localizer: the string itself is the key, the English text,
// and `translations` holds the text of each language column. A slot may be
// empty, which means "no translation" (an empty string is a translation).
//
// Only the key takes part in comparisons and in the class stream, so rows
// order and persist exactly as their keys do.
class KLocalizerString : public KString {
    K_DECLARE_CLASS(KLocalizerString)
public:
    KLocalizerString();
    explicit KLocalizerString(const KString& key);
    KLocalizerString(const KLocalizerString& other);
    ~KLocalizerString() override;
    KLocalizerString& operator=(const KLocalizerString& other);

    KThing* deepCopy() const override;
    void describe(KJsonWriter& out) const override;

    void setColumnCount(int32_t count);
    int32_t getColumnCount() const { return translations.getCapacity(); }
    // The text of `column`, or null when the column is out of range or empty.
    const KString* getTranslation(int32_t column) const;
    // Grows the columns as needed and stores a copy of `text`.
    void setTranslation(int32_t column, const KString& text);
    // Clears the slot; the last column is dropped altogether.
    void removeColumn(int32_t column);

private:
    void copyTranslationsFrom(const KLocalizerString& other);

    KArray translations;
};

using KLocalizerStringPtr = KPtr<KLocalizerString>;
