#pragma once

#include "kernel/KBag.h"

// A map from 32-bit keys to objects, kept as two parallel bags: element i of
// `keys` goes with element i of `objects`. Look-ups are linear.
class KIndexedBag : public KThing {
    K_DECLARE_CLASS(KIndexedBag)
public:
    KIndexedBag();
    KIndexedBag(const KIndexedBag& other);
    KIndexedBag& operator=(const KIndexedBag& other);

    KThing* deepCopy() const override;
    // Section 1: the keys' stream, then the objects' stream. Reading lowers
    // the unknown-class policy from 1 to 0 and leaves it there, so that an
    // entry of an unknown class keeps its index; such entries are then
    // removed with their keys.
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    // Does nothing when the key is already present.
    void add(int32_t key, KThing& obj);
    void add(int32_t key, const KThingPtr& ptr);
    void removeKey(int32_t key);
    void removeObject(const KThing& obj);
    void removeAt(int32_t pos);
    void clear();

    bool hasKey(int32_t key, int32_t* pos = nullptr) const;
    bool hasObject(const KThing& obj, int32_t* pos = nullptr) const;
    // Null for a missing key.
    KThing* getObject(int32_t key) const;

    int32_t getSize() const { return objects.getSize(); }
    int32_t getKeyAt(int32_t pos) const { return keys.getDirectDataAt(pos); }
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

    KBag keys;
    KBag objects;
};
