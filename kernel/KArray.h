#pragma once

#include "kernel/KThing.h"

#include "kernel/KSourceLocation.h"

// A fixed number of slots holding either counted objects or raw 32-bit
// values. Object slots keep a reference: storing adds one to the object's
// count, clearing releases it. Every object handed to an array must live on
// the heap.
//
// The logical slot count `size` is what callers and the class stream see.
// Beneath it the array keeps a physical block that grows geometrically, so
// that growing by one slot at a time (a bag's default) stays amortised
// linear. Slots between `size` and the physical end are always zero.
class KArray : public KThing {
    K_DECLARE_CLASS(KArray)
public:
    // Compares slots I and J; only the low 16 bits of the result count.
    using CompareProc = int32_t (*)(KArray& array, int32_t i, int32_t j);
    enum SortOrder : int32_t { Ascending = 0, Descending = 1 };

    KArray();
    KArray(const KArray& other);
    ~KArray() override;
    KArray& operator=(const KArray& other);

    KThing* deepCopy() const override;
    // Section 1: the slot count, the direct flag, then the raw values, or
    // for each slot a class id (0 for an empty slot) and the object's stream.
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    // Slot 10.
    virtual void setSize(int32_t n);
    // Slots 11 and 12: a bag answers with its used count.
    virtual int32_t getSize() const;
    virtual bool isEmpty() const;
    // Slots 13 and 14.
    virtual void putAt(const KThingPtr& ptr, int32_t pos);
    virtual void putAt(KThing& obj, int32_t pos);
    // Slot 15.
    virtual void resetAt(int32_t pos);
    // Slot 16.
    virtual void putDirectDataAt(int32_t value, int32_t pos);
    // Slot 17: clears every slot from 0 to `size`.
    virtual void resetAll();

    // The slot count as the class stream records it, whatever getSize says.
    int32_t getCapacity() const { return size; }
    // Slots physically allocated; at least `size`.
    int32_t getAllocatedSlots() const { return allocated; }

    bool getIsDirect() const { return isDirect; }
    void setIsDirect(bool direct);

    // The object at `pos`; out of range, a direct array or an empty slot
    // is fatal, so code that may meet nulls uses isSetAt or getAt.
    KThing& operator[](int32_t pos) const;
    bool isSetAt(int32_t pos) const;
    // The object at `pos`, or null for an empty slot, a bad position or a
    // direct array. Raises nothing.
    KThing* getAt(int32_t pos) const;
    int32_t getDirectDataAt(int32_t pos) const;
    // The raw value block of a direct array (null when empty or not direct),
    // for reading and writing it in one piece.
    int32_t* getDirectData() { return isDirect ? directSlots() : nullptr; }
    const int32_t* getDirectData() const { return isDirect ? directSlots() : nullptr; }

    // Copies slots without touching reference counts; the source range is
    // left as it was.
    void move(int32_t from, int32_t to, int32_t moveSize);
    void swap(int32_t from, int32_t to);

    // Linear search by address over getSize() slots. A null object finds the
    // first empty slot.
    bool has(const KThing& obj, int32_t* pos = nullptr) const;
    bool has(const KThing* obj, int32_t* pos = nullptr) const;
    bool has(const KThingPtr& ptr, int32_t* pos = nullptr) const;
    int32_t findIndexOf(const KThing& obj) const;
    int32_t findIndexOf(const KThingPtr& ptr) const;

    void setCompareProc(CompareProc proc) { compareProc = proc; }
    void clearCompareProc() { compareProc = nullptr; }
    CompareProc getCompareProc() const { return compareProc; }
    void setSortOrder(int32_t order) { sortOrder = order; }
    int32_t getSortOrder() const { return sortOrder; }
    void sort();

    // Elements the last read left out (dropped) or left empty (nulled)
    // because their class was unknown.
    int32_t getDroppedOnRead() const { return droppedOnRead; }
    void setDroppedOnRead(int32_t count) { droppedOnRead = count; }
    int32_t getNulledOnRead() const { return nulledOnRead; }
    void setNulledOnRead(int32_t count) { nulledOnRead = count; }

protected:
    // Raise what putAt would for an object or position that cannot be
    // stored to, with the caller as location.
    bool acceptsObject(const KThing& obj, const KSourceLocation& where = KSourceLocation::current()) const;
    bool checkRange(int32_t pos, const KSourceLocation& where = KSourceLocation::current()) const;
    // Zeroes a slot without releasing what it held (after a move).
    void zeroSlot(int32_t pos);
    // Fills `target` (already sized and set up) with deep copies of the
    // first `count` slots.
    void deepCopyElementsInto(KArray& target, int32_t count) const;
    // The "elements" member of describe(): the getSize() first slots.
    void describeElements(KJsonWriter& out) const;

private:
    KThing** objectSlots() const { return static_cast<KThing**>(data); }
    int32_t* directSlots() const { return static_cast<int32_t*>(data); }
    // A slot holds a pointer, not the object.
    // NOLINTNEXTLINE(bugprone-sizeof-expression): the pointer's size is meant
    size_t slotBytes() const { return isDirect ? sizeof(int32_t) : sizeof(KThing*); }
    bool reallocate(int32_t slots, int32_t keep);
    void releaseStorage();
    void rawSwap(int32_t a, int32_t b);

    // Reading steps; `payload` is the length of section 1.
    void readSlots(KFile& file, int32_t payload);
    void readDirectSlots(KFile& file);
    void readObjectSlots(KFile& file);
    void writeDirectSlots(KFile& file) const;

    // Sorting steps.
    int32_t compareSlots(int32_t i, int32_t j);
    bool checkSortable() const;
    void choosePivot(int32_t lo, int32_t n);
    int32_t partition(int32_t lo, int32_t hi);
    void quickSort(int32_t lo, int32_t hi);

    CompareProc compareProc = nullptr;
    int32_t sortOrder = Ascending;
    int32_t size = 0;
    void* data = nullptr;
    bool isDirect = false;
    int32_t droppedOnRead = 0;
    int32_t nulledOnRead = 0;
    int32_t allocated = 0;
};
