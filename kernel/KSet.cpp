#include "kernel/KSet.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KMemory.h"

K_DEFINE_CLASS(KSet, KThing)

KSet::KSet() { allocateBits(kDefaultCapacity); }

KSet::KSet(int32_t capacity) { allocateBits(capacity < 0 ? 0 : capacity); }

KSet::KSet(const KSet& other)
    : KThing(other)
{
    operator=(other);
}

KSet::~KSet()
{
    if (bits)
        KMemory::dispose(bits);
}

KSet& KSet::operator=(const KSet& other)
{
    if (this == &other)
        return *this;
    allocateBits(other.capacity);
    int32_t words = wordCount < other.wordCount ? wordCount : other.wordCount;
    KMemory::copy(other.bits, bits, size_t(words) * sizeof(uint32_t));
    return *this;
}

KThing* KSet::deepCopy() const { return new KSet(*this); }

void KSet::allocateBits(int32_t newCapacity)
{
    // capacity/8 + 4 bytes, rounded to whole words.
    int32_t words = newCapacity / bitsPerWord + 1;
    auto* block = static_cast<uint32_t*>(KMemory::allocate(size_t(words) * sizeof(uint32_t), true));
    if (!block)
        return;
    if (bits)
        KMemory::dispose(bits);
    bits = block;
    wordCount = words;
    capacity = newCapacity;
}

void KSet::setCapacity(int32_t newCapacity)
{
    if (newCapacity < 0) {
        KErrorHandler::raiseError(KError::ParameterError, "KSet::setCapacity(long C)");
        return;
    }
    allocateBits(newCapacity);
}

bool KSet::inRange(int32_t index) const
{
    return index >= 0 && index < capacity && index / bitsPerWord < wordCount;
}

void KSet::add(int32_t index)
{
    if (inRange(index))
        bits[index / bitsPerWord] |= 1u << (index % bitsPerWord);
}

void KSet::remove(int32_t index)
{
    if (inRange(index))
        bits[index / bitsPerWord] &= ~(1u << (index % bitsPerWord));
}

bool KSet::has(int32_t index) const
{
    return inRange(index) && (bits[index / bitsPerWord] & (1u << (index % bitsPerWord))) != 0;
}

void KSet::clear() { KMemory::clear(bits, size_t(wordCount) * sizeof(uint32_t)); }
