#include "kernel/KLocalizerString.h"

#include "kernel/KClass.h"
#include "kernel/KJsonWriter.h"

K_DEFINE_CLASS(KLocalizerString, KString)

KLocalizerString::KLocalizerString() = default;

KLocalizerString::KLocalizerString(const KString& key)
    : KString(key)
{
}

KLocalizerString::KLocalizerString(const KLocalizerString& other)
    : KString(other)
{
    copyTranslationsFrom(other);
}

KLocalizerString::~KLocalizerString() = default;

KLocalizerString& KLocalizerString::operator=(const KLocalizerString& other)
{
    if (this == &other)
        return *this;
    KString::operator=(other);
    copyTranslationsFrom(other);
    return *this;
}

// Rows never share their texts: each copy owns copies.
void KLocalizerString::copyTranslationsFrom(const KLocalizerString& other)
{
    translations.resetAll();
    translations.setSize(other.getColumnCount());
    for (int32_t column = 0; column < other.getColumnCount(); ++column) {
        if (const KString* text = other.getTranslation(column))
            setTranslation(column, *text);
    }
}

KThing* KLocalizerString::deepCopy() const { return new KLocalizerString(*this); }

void KLocalizerString::describe(KJsonWriter& out) const
{
    KString::describe(out);
    out.key("translations");
    out.beginArray();
    for (int32_t column = 0; column < getColumnCount(); ++column) {
        const KString* text = getTranslation(column);
        if (text)
            out.value(*text);
        else
            out.nullValue();
    }
    out.endArray();
}

void KLocalizerString::setColumnCount(int32_t count)
{
    if (count >= 0)
        translations.setSize(count);
}

const KString* KLocalizerString::getTranslation(int32_t column) const
{
    // getAt answers null for a bad column as for an empty slot.
    return static_cast<const KString*>(translations.getAt(column));
}

void KLocalizerString::setTranslation(int32_t column, const KString& text)
{
    if (column < 0)
        return;
    if (column >= getColumnCount())
        translations.setSize(column + 1);
    translations.putAt(*new KString(text), column);
}

void KLocalizerString::removeColumn(int32_t column)
{
    if (column < 0 || column >= getColumnCount())
        return;
    translations.resetAt(column);
    if (column == getColumnCount() - 1)
        translations.setSize(column);
}
