#pragma once

#include "kernel/KThing.h"

// A set of small non-negative integers, one bit each. Indices at or above
// the capacity are ignored by every element operation.
class KSet : public KThing {
    K_DECLARE_CLASS(KSet)
public:
    static constexpr int32_t kDefaultCapacity = 32;

    KSet();
    explicit KSet(int32_t capacity);
    KSet(const KSet& other);
    ~KSet() override;
    KSet& operator=(const KSet& other);

    KThing* deepCopy() const override;
    // Section 1: long capacity only. The bits are not stored, and reading
    // sets the field without reallocating.
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    // Drops the old contents.
    void setCapacity(int32_t bits);
    int32_t getCapacity() const { return capacity; }
    int32_t getBitsPerWord() const { return bitsPerWord; }
    // Records a capacity without reallocating, as reading a stream does;
    // bit operations never reach beyond the storage actually held.
    void setCapacityField(int32_t bits) { capacity = bits; }

    void add(int32_t index);
    void remove(int32_t index);
    bool has(int32_t index) const;
    void clear();

private:
    bool inRange(int32_t index) const;
    void allocateBits(int32_t bits);

    int32_t capacity = 0;
    int32_t bitsPerWord = 32;
    uint32_t* bits = nullptr;
    int32_t wordCount = 0;
};
