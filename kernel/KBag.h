#pragma once

#include "kernel/KArray.h"

// A growing sequence on top of KArray. `usedSize` counts the elements;
// the array's `size` is the capacity, which grows and shrinks in steps of
// `growSize` and never shrinks below `minSize`. A bag expected to take many
// elements is given a larger grow size before its first element.
class KBag : public KArray {
    K_DECLARE_CLASS(KBag)
public:
    KBag();
    KBag(const KBag& other);
    ~KBag() override;
    KBag& operator=(const KBag& other);

    KThing* deepCopy() const override;
    // Section 1: the KArray stream (spare capacity as empty slots), then
    // usedSize, growSize and minSize.
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    // Lowers the used count to `n` when it exceeds it.
    void setSize(int32_t n) override;
    // The used count.
    int32_t getSize() const override;
    bool isEmpty() const override;

    int32_t getUsedSize() const { return usedSize; }
    // Only for readers restoring a stream; the slots must already be there.
    void setUsedSize(int32_t count) { usedSize = count; }
    int32_t getGrowSize() const { return growSize; }
    void setGrowSize(int32_t grow);
    int32_t getMinSize() const { return minSize; }
    void setMinSize(int32_t min);

    void add(KThing& obj);
    void add(const KThingPtr& ptr);
    void addDirectData(int32_t value);
    // `pos` from 0 to the used count inclusive; the used count appends.
    void insertAt(KThing& obj, int32_t pos);
    void insertAt(const KThingPtr& ptr, int32_t pos);
    void insertDirectDataAt(int32_t value, int32_t pos);
    void removeAt(int32_t pos);
    // Many objects at once, the tail moved once: `count` objects from
    // `objects` go in at `pos` (those the bag refuses are left out), and
    // `count` slots from `first` go. False when the bag could not grow.
    bool insertAllAt(KThing* const* objects, int32_t count, int32_t pos);
    void removeSlots(int32_t first, int32_t count);
    // Removes the first slot holding `obj`; nothing when none does.
    void removeObject(const KThing& obj);
    void removeObject(const KThingPtr& ptr);
    void clear();
    // Adds every element of `other` when both hold the same kind of slot.
    void append(const KBag& other);

private:
    void growIfFull();
    // Opens a zeroed slot at a checked `pos`, moving the tail up; false
    // when the bag could not grow.
    bool openSlot(int32_t pos);
    void shrinkIfSparse();
    void readCounts(KFile& file, int32_t slotsInStream);

    int32_t usedSize = 0;
    int32_t growSize = 1;
    int32_t minSize = 0;
};
