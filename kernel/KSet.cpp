#include "kernel/KSet.h"

#include "kernel/KClass.h"
#include "kernel/KClassWriter.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KMemory.h"
#include "kernel/KStreamReading.h"

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
        KErrorHandler::raiseError(KError::ParameterError);
        return;
    }
    allocateBits(newCapacity);
}

bool KSet::inRange(int32_t index) const { return index >= 0 && index < capacity && index / bitsPerWord < wordCount; }

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

// Persistence.

void KSet::writeToFile(KFile& file, int32_t)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    file.writeLong(capacity);
    writer.end();
}

void KSet::readFromFile(KFile& file)
{
    KStreamReading::readMainSection(file, classRecord, [&](int32_t) {
        int32_t bits = file.readLong();
        if (file.getError())
            return;
        // A copy allocates by the capacity: a negative one is damage.
        if (bits < 0) {
            file.setError(KError::CouldNotReadFile);
            return;
        }
        setCapacityField(bits);
    });
}

void KSet::describe(KJsonWriter& out) const { out.member("capacity", capacity); }
