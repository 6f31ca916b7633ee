#pragma once

#include "kernel/KBag.h"

// A map from KString keys to objects, kept as two parallel bags. Keys are
// compared exactly, or as upper-cased copies when the bag is not case
// sensitive. Look-ups are linear, which suits the short named lists of a
// document.
class KNamedBag : public KThing {
    K_DECLARE_CLASS(KNamedBag)
public:
    KNamedBag();
    KNamedBag(const KNamedBag& other);
    KNamedBag& operator=(const KNamedBag& other);

    KThing* deepCopy() const override;
    // Section 1: the keys' stream, then the objects' stream. Reading lowers
    // the unknown-class policy from 1 to 0 for its duration, so that an entry
    // of an unknown class keeps its index; such entries are then removed
    // with their keys.
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    void setCaseSensitive(bool sensitive) { caseSensitive = sensitive; }
    bool isCaseSensitive() const { return caseSensitive; }

    // With `replace` an existing entry goes first; otherwise an existing key
    // leaves the bag unchanged. A heap key is shared, any other is copied.
    void add(const KString& key, KThing& obj, bool replace = false);
    void add(const KString& key, const KThingPtr& ptr, bool replace = false);
    void removeKey(const KString& key);
    void removeObject(const KThing& obj);
    void removeAt(int32_t pos);
    void clear();
    void swap(int32_t a, int32_t b);

    bool hasKey(const KString& key, int32_t* pos = nullptr) const;
    // Searches from index `start` on.
    bool hasKey(const KString& key, int32_t start, int32_t* pos) const;
    bool hasObject(const KThing& obj, int32_t* pos = nullptr) const;
    int32_t countKeys(const KString& key) const;

    // A missing key is fatal; findNamedObject answers null instead.
    KThing& getNamedObject(const KString& key) const;
    KThing* findNamedObject(const KString& key) const;

    int32_t getSize() const { return objects.getSize(); }
    // Null for a bad position.
    KString* getKeyAt(int32_t pos) const;
    KThing* getObjectAt(int32_t pos) const { return objects.getAt(pos); }

    // The two halves, for the class stream.
    KBag& getKeys() { return keys; }
    const KBag& getKeys() const { return keys; }
    KBag& getObjects() { return objects; }
    const KBag& getObjects() const { return objects; }

private:
    void readHalves(KFile& file);
    // Damaged halves (of the wrong kind or of different lengths) are emptied.
    void removeUnreadEntries();

    // `probe` is the key as compared: upper-cased when not case sensitive.
    bool keyMatches(int32_t pos, const KString& probe) const;
    KString probeFor(const KString& key) const;

    KBag keys;
    KBag objects;
    bool caseSensitive = true;
};
