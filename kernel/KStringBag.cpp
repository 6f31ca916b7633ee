#include "kernel/KStringBag.h"

#include "kernel/KClass.h"
#include "kernel/KString.h"

#include <typeinfo>

K_DEFINE_CLASS(KStringBag, KBag)

KStringBag::KStringBag() = default;

KStringBag::KStringBag(const KStringBag& other)
    : KBag(other)
    , caseSensitive(other.caseSensitive)
{
}

KStringBag& KStringBag::operator=(const KStringBag& other)
{
    KBag::operator=(other);
    caseSensitive = other.caseSensitive;
    return *this;
}

KThing* KStringBag::deepCopy() const
{
    auto* copy = new KStringBag();
    copy->caseSensitive = caseSensitive;
    // The bag's own deep copy, moved into a string bag.
    KBag* elements = static_cast<KBag*>(KBag::deepCopy());
    copy->KBag::operator=(*elements);
    delete elements;
    return copy;
}

template<class Store>
void KStringBag::storeCopy(KString* copy, Store store)
{
    store(*copy);
    // Nobody took it (a direct bag refuses objects): it is still unowned.
    if (copy->getReferenceCount() == 1)
        delete copy;
}

void KStringBag::add(const KString& text)
{
    storeCopy(new KString(text), [this](KString& s) { KBag::add(s); });
}

void KStringBag::add(const char* text)
{
    storeCopy(new KString(text), [this](KString& s) { KBag::add(s); });
}

void KStringBag::insertAt(const KString& text, int32_t pos)
{
    storeCopy(new KString(text), [this, pos](KString& s) { KBag::insertAt(s, pos); });
}

void KStringBag::insertAt(const char* text, int32_t pos)
{
    storeCopy(new KString(text), [this, pos](KString& s) { KBag::insertAt(s, pos); });
}

void KStringBag::remove(const KString& text)
{
    int32_t pos;
    if (has(text, &pos))
        removeAt(pos);
}

KString* KStringBag::getStringAt(int32_t pos) const { return dynamic_cast<KString*>(getAt(pos)); }

bool KStringBag::has(const KString& text, int32_t* pos) const
{
    KString probe = caseSensitive ? text : text.getUpper();
    int32_t count = getSize();
    for (int32_t i = 0; i < count; ++i) {
        KThing* element = getAt(i);
        if (!element || typeid(*element) != typeid(KString))
            continue;
        const auto& stored = static_cast<const KString&>(*element);
        bool equal = caseSensitive ? stored.compare(probe) == 0 : stored.getUpper().compare(probe) == 0;
        if (equal) {
            if (pos)
                *pos = i;
            return true;
        }
    }
    return false;
}
