#pragma once

#include "kernel/KBag.h"

// A bag of strings. Adding stores a new heap copy of the text, so callers
// keep their own strings. Look-ups compare by value and see only elements
// whose class is exactly KString.
class KStringBag : public KBag {
    K_DECLARE_CLASS(KStringBag)
public:
    KStringBag();
    KStringBag(const KStringBag& other);
    KStringBag& operator=(const KStringBag& other);

    KThing* deepCopy() const override;

    void setCaseSensitive(bool sensitive) { caseSensitive = sensitive; }
    bool isCaseSensitive() const { return caseSensitive; }

    void add(const KString& text);
    void add(const char* text);
    void insertAt(const KString& text, int32_t pos);
    void insertAt(const char* text, int32_t pos);
    // Removes the first element equal to `text`.
    void remove(const KString& text);

    using KArray::has;
    bool has(const KString& text, int32_t* pos = nullptr) const;

    // Null for a bad position or an element that is not a string.
    KString* getStringAt(int32_t pos) const;

private:
    // Stores `copy` through `store`; a refused copy is deleted again.
    template<class Store>
    void storeCopy(KString* copy, Store store);

    bool caseSensitive = true;
};
