#include "kernel/KArray.h"

#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KComparable.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KMemory.h"
#include "kernel/KStreamReading.h"
#include "kernel/KThingPtr.h"

#include <algorithm>
#include <cstdint>

K_DEFINE_CLASS(KArray, KThing)

namespace {

// Pivot positions only need to be unpredictable for ordered input, not
// secure: a xorshift generator with a fixed seed keeps sorting reproducible.
uint16_t nextRandom16()
{
    static uint32_t state = 0x2545F491u;
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    return uint16_t(state >> 16);
}

// A value from 0 to n - 1: the 16-bit random number scaled to the range.
int32_t randomIndex(int32_t n) { return int32_t((uint64_t(nextRandom16()) * uint64_t(n)) >> 16); }

constexpr int32_t kMedianOfThreeRange = 25;

} // namespace

KArray::KArray() = default;

KArray::KArray(const KArray& other)
    : KThing(other)
{
    operator=(other);
}

KArray::~KArray()
{
    resetAll();
    releaseStorage();
}

KArray& KArray::operator=(const KArray& other)
{
    if (this == &other)
        return *this;
    setSize(0);
    isDirect = other.isDirect;
    setSize(other.size);
    compareProc = other.compareProc;
    sortOrder = other.sortOrder;
    // A bag's spare slots are not elements: only getSize() of them are read.
    int32_t count = std::min(other.getSize(), size);
    for (int32_t i = 0; i < count; ++i) {
        if (isDirect)
            putDirectDataAt(other.getDirectDataAt(i), i);
        else
            putAt(other[i], i);
    }
    return *this;
}

KThing* KArray::deepCopy() const
{
    auto* copy = new KArray();
    copy->isDirect = isDirect;
    copy->compareProc = compareProc;
    copy->sortOrder = sortOrder;
    copy->setSize(size);
    deepCopyElementsInto(*copy, size);
    return copy;
}

void KArray::deepCopyElementsInto(KArray& target, int32_t count) const
{
    count = std::min({ count, size, target.size });
    if (isDirect) {
        if (target.isDirect && count > 0)
            KMemory::copy(directSlots(), target.directSlots(), size_t(count) * sizeof(int32_t));
        return;
    }
    for (int32_t i = 0; i < count; ++i) {
        KThing* element = objectSlots()[i];
        if (!element)
            continue;
        if (KThing* copy = element->deepCopy())
            target.putAt(*copy, i);
    }
}

void KArray::setSize(int32_t n)
{
    if (n == size)
        return;
    if (n < 0) {
        KErrorHandler::raiseError(KError::ParameterError);
        return;
    }
    if (n == 0) {
        resetAll();
        releaseStorage();
        size = 0;
        return;
    }
    if (n > allocated) {
        int64_t grown = int64_t(allocated) + allocated / 2;
        auto slots = int32_t(std::clamp<int64_t>(grown, n, INT32_MAX));
        if (!reallocate(slots, size))
            return;
        size = n;
        return;
    }
    if (n > size) {
        // The physical block already holds zeroed slots up to its end.
        size = n;
        return;
    }
    for (int32_t i = n; i < size; ++i)
        resetAt(i);
    size = n;
    // Give memory back only when most of the block is idle, so that a bag
    // shrinking and growing by one slot does not copy each time.
    if (n <= allocated / 4)
        reallocate(n * 2, n);
}

bool KArray::reallocate(int32_t slots, int32_t keep)
{
    void* block = KMemory::allocate(size_t(slots) * slotBytes(), true);
    if (!block)
        return false;
    if (data) {
        KMemory::copy(data, block, size_t(std::min(keep, slots)) * slotBytes());
        KMemory::dispose(data);
    }
    data = block;
    allocated = slots;
    return true;
}

void KArray::releaseStorage()
{
    if (data)
        KMemory::dispose(data);
    data = nullptr;
    allocated = 0;
}

int32_t KArray::getSize() const { return size; }

bool KArray::isEmpty() const { return size == 0; }

bool KArray::checkRange(int32_t pos, const KSourceLocation& where) const
{
    if (pos >= 0 && pos < size)
        return true;
    KErrorHandler::raiseError(KError::IndexOutOfRange, where);
    return false;
}

bool KArray::acceptsObject(const KThing& obj, const KSourceLocation& where) const
{
    if (isDirect) {
        KErrorHandler::raiseError(KError::ArrayIsDirect, where);
        return false;
    }
    if (!obj.isOnHeap()) {
        KErrorHandler::raiseError(KError::ObjectNotOnHeap, where);
        return false;
    }
    return true;
}

void KArray::putAt(const KThingPtr& ptr, int32_t pos) { putAt(ptr.getObject(), pos); }

void KArray::putAt(KThing& obj, int32_t pos)
{
    if (!checkRange(pos) || !acceptsObject(obj))
        return;
    KThing*& slot = objectSlots()[pos];
    if (slot == &obj)
        return;
    // Take the new reference first: the old object may own the new one.
    obj.incReferenceCount();
    KThing* old = slot;
    slot = &obj;
    if (old)
        old->decReferenceCount();
}

void KArray::resetAt(int32_t pos)
{
    if (!checkRange(pos))
        return;
    if (isDirect) {
        directSlots()[pos] = 0;
        return;
    }
    KThing* old = objectSlots()[pos];
    objectSlots()[pos] = nullptr;
    if (old)
        old->decReferenceCount();
}

void KArray::putDirectDataAt(int32_t value, int32_t pos)
{
    if (!checkRange(pos))
        return;
    if (!isDirect) {
        KErrorHandler::raiseError(KError::ArrayIsNotDirect);
        return;
    }
    directSlots()[pos] = value;
}

void KArray::resetAll()
{
    if (!data)
        return;
    if (isDirect) {
        KMemory::clear(data, size_t(size) * sizeof(int32_t));
        return;
    }
    for (int32_t i = 0; i < size; ++i) {
        KThing* old = objectSlots()[i];
        objectSlots()[i] = nullptr;
        if (old)
            old->decReferenceCount();
    }
}

void KArray::zeroSlot(int32_t pos)
{
    if (isDirect)
        directSlots()[pos] = 0;
    else
        objectSlots()[pos] = nullptr;
}

void KArray::setIsDirect(bool direct)
{
    if (size != 0) {
        KErrorHandler::raiseError(KError::ArrayInUse);
        return;
    }
    isDirect = direct;
}

KThing& KArray::operator[](int32_t pos) const
{
    // A reference cannot be null, so these failures never return.
    if (pos < 0 || pos >= size)
        KErrorHandler::raiseUnrecoverable(KError::IndexOutOfRange);
    if (isDirect)
        KErrorHandler::raiseUnrecoverable(KError::ArrayIsDirect);
    KThing* element = objectSlots()[pos];
    if (!element)
        KErrorHandler::raiseUnrecoverable(KError::NoObject);
    return *element;
}

bool KArray::isSetAt(int32_t pos) const { return getAt(pos) != nullptr; }

KThing* KArray::getAt(int32_t pos) const
{
    if (pos < 0 || pos >= size || isDirect)
        return nullptr;
    return objectSlots()[pos];
}

int32_t KArray::getDirectDataAt(int32_t pos) const
{
    if (!checkRange(pos))
        return 0;
    if (!isDirect) {
        KErrorHandler::raiseError(KError::ArrayIsNotDirect);
        return 0;
    }
    return directSlots()[pos];
}

void KArray::move(int32_t from, int32_t to, int32_t moveSize)
{
    bool inRange = from >= 0 && from < size && to >= 0 && to < size && moveSize > 0 && int64_t(to) + moveSize <= size
                   && int64_t(from) + moveSize <= size;
    if (!inRange) {
        KErrorHandler::raiseError(KError::IndexOutOfRange);
        return;
    }
    // KMemory::copy tolerates overlap, which is what a temporary buffer buys.
    auto* base = static_cast<char*>(data);
    KMemory::copy(base + size_t(from) * slotBytes(), base + size_t(to) * slotBytes(), size_t(moveSize) * slotBytes());
}

void KArray::swap(int32_t from, int32_t to)
{
    if (!checkRange(from) || !checkRange(to))
        return;
    rawSwap(from, to);
}

void KArray::rawSwap(int32_t a, int32_t b)
{
    if (isDirect)
        std::swap(directSlots()[a], directSlots()[b]);
    else
        std::swap(objectSlots()[a], objectSlots()[b]);
}

bool KArray::has(const KThing& obj, int32_t* pos) const { return has(&obj, pos); }

bool KArray::has(const KThingPtr& ptr, int32_t* pos) const { return has(ptr.get(), pos); }

bool KArray::has(const KThing* obj, int32_t* pos) const
{
    if (isDirect) {
        KErrorHandler::raiseError(KError::ArrayIsDirect);
        return false;
    }
    int32_t count = std::min(getSize(), size);
    for (int32_t i = 0; i < count; ++i) {
        if (objectSlots()[i] == obj) {
            if (pos)
                *pos = i;
            return true;
        }
    }
    return false;
}

int32_t KArray::findIndexOf(const KThingPtr& ptr) const
{
    if (!ptr.get())
        return -1;
    return findIndexOf(*ptr.get());
}

int32_t KArray::findIndexOf(const KThing& obj) const
{
    if (isDirect) {
        KErrorHandler::raiseError(KError::ArrayIsDirect);
        return -1;
    }
    int32_t count = std::min(getSize(), size);
    for (int32_t i = 0; i < count; ++i) {
        if (objectSlots()[i] == &obj)
            return i;
    }
    return -1;
}

// Sorting: a quicksort over all `size` slots (a bag's spare capacity
// included) that recurses into the smaller side and loops on the larger.

void KArray::sort()
{
    if (!compareProc && !checkSortable()) {
        KErrorHandler::raiseError(KError::NoCompareProc);
        return;
    }
    quickSort(0, size);
}

bool KArray::checkSortable() const
{
    int32_t count = std::min(getSize(), size);
    if (isDirect)
        return count == 0;
    for (int32_t i = 0; i < count; ++i) {
        if (!dynamic_cast<KComparable*>(objectSlots()[i]))
            return false;
    }
    return true;
}

int32_t KArray::compareSlots(int32_t i, int32_t j)
{
    int32_t result = 0;
    if (compareProc) {
        result = int16_t(compareProc(*this, i, j));
    } else if (isDirect) {
        int32_t a = directSlots()[i];
        int32_t b = directSlots()[j];
        result = a > b ? 1 : (a < b ? -1 : 0);
    } else {
        auto* a = dynamic_cast<KComparable*>(objectSlots()[i]);
        auto* b = dynamic_cast<KComparable*>(objectSlots()[j]);
        // Empty slots (a bag's spare capacity) stay behind the elements in
        // either order, so that a sorted bag keeps its elements in front.
        if (!a || !b)
            return (a ? 0 : 1) - (b ? 0 : 1);
        result = *a > *b ? 1 : (*a < *b ? -1 : 0);
    }
    if (result == 0)
        return 0;
    int32_t sign = result > 0 ? 1 : -1;
    return sortOrder == Descending ? -sign : sign;
}

void KArray::choosePivot(int32_t lo, int32_t n)
{
    int32_t random = lo + randomIndex(n);
    if (n < kMedianOfThreeRange) {
        if (random != lo)
            rawSwap(lo, random);
        return;
    }
    int32_t a = lo;
    int32_t b = lo + n / 2;
    int32_t c = random;
    int32_t median;
    if (compareSlots(a, b) < 0)
        median = compareSlots(b, c) < 0 ? b : (compareSlots(a, c) < 0 ? c : a);
    else
        median = compareSlots(a, c) < 0 ? a : (compareSlots(b, c) < 0 ? c : b);
    if (median != lo)
        rawSwap(lo, median);
}

int32_t KArray::partition(int32_t lo, int32_t hi)
{
    int32_t i = lo;
    int32_t j = hi;
    for (;;) {
        ++i;
        while (i < hi && compareSlots(i, lo) < 0)
            ++i;
        --j;
        while (j > lo && compareSlots(j, lo) > 0)
            --j;
        if (i >= j)
            return j;
        rawSwap(i, j);
    }
}

void KArray::quickSort(int32_t lo, int32_t hi)
{
    while (hi - lo >= 2) {
        choosePivot(lo, hi - lo);
        int32_t j = partition(lo, hi);
        if (j == lo) {
            ++lo;
            continue;
        }
        rawSwap(lo, j);
        if (j - lo < hi - (j + 1)) {
            quickSort(lo, j);
            lo = j + 1;
        } else {
            quickSort(j + 1, hi);
            hi = j;
        }
    }
}

// Persistence.

namespace {

// Raw values go to and from the file in blocks of this many slots.
constexpr int32_t kDirectBlock = 4096;

// Every slot takes at least four bytes: its raw value or its class id.
constexpr int32_t kMinSlotBytes = 4;

void putBigEndian(uint32_t value, unsigned char* bytes)
{
    bytes[0] = uint8_t(value >> 24);
    bytes[1] = uint8_t(value >> 16);
    bytes[2] = uint8_t(value >> 8);
    bytes[3] = uint8_t(value);
}

uint32_t getBigEndian(const unsigned char* bytes)
{
    return uint32_t(bytes[0]) << 24 | uint32_t(bytes[1]) << 16 | uint32_t(bytes[2]) << 8 | uint32_t(bytes[3]);
}

} // namespace

void KArray::writeToFile(KFile& file, int32_t)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    file.writeLong(size);
    file.writeBool(isDirect);
    if (isDirect) {
        writeDirectSlots(file);
    } else {
        for (int32_t i = 0; i < size; ++i)
            KClassWriter::writeObject(file, objectSlots()[i]);
    }
    writer.end();
}

void KArray::writeDirectSlots(KFile& file) const
{
    unsigned char block[kDirectBlock * 4];
    for (int32_t done = 0; done < size;) {
        int32_t count = std::min(kDirectBlock, size - done);
        for (int32_t i = 0; i < count; ++i)
            putBigEndian(uint32_t(directSlots()[done + i]), block + 4 * i);
        file.write(block, count * 4);
        done += count;
    }
}

void KArray::readFromFile(KFile& file)
{
    droppedOnRead = 0;
    nulledOnRead = 0;
    KStreamReading::readMainSection(file, classRecord, [&](int32_t payload) { readSlots(file, payload); });
}

void KArray::readSlots(KFile& file, int32_t payload)
{
    int32_t count = file.readLong();
    bool direct = file.readBool();
    if (file.getError())
        return;
    // The count is checked against the bytes there before any allocation.
    if (count < 0 || int64_t(count) * kMinSlotBytes > payload - 5) {
        file.setError(KError::CouldNotReadFile);
        return;
    }
    if (!file.checkAvailable(int64_t(count) * kMinSlotBytes))
        return;
    setSize(0);
    setIsDirect(direct);
    setSize(count);
    if (size != count) {
        file.setError(KError::CouldNotReadFile);
        return;
    }
    if (direct)
        readDirectSlots(file);
    else
        readObjectSlots(file);
}

void KArray::readDirectSlots(KFile& file)
{
    // Read in place, then turned to host order one slot at a time.
    auto* bytes = static_cast<unsigned char*>(data);
    if (size == 0 || !file.readBytes(bytes, size * 4)) {
        resetAll();
        return;
    }
    for (int32_t i = 0; i < size; ++i)
        directSlots()[i] = int32_t(getBigEndian(bytes + 4 * i));
}

void KArray::readObjectSlots(KFile& file)
{
    int32_t count = size;
    int32_t position = 0;
    for (int32_t i = 0; i < count && !file.getError(); ++i) {
        KThingPtr element;
        switch (KStreamReading::readObject(file, element)) {
        case KClassReader::ObjectRead:
            putAt(element.getObject(), position++);
            break;
        case KClassReader::NullObject:
            ++position;
            break;
        case KClassReader::NulledObject:
            ++position;
            ++nulledOnRead;
            break;
        case KClassReader::DroppedObject:
            ++droppedOnRead;
            break;
        case KClassReader::ReadFailed:
            break;
        }
    }
    if (droppedOnRead > 0)
        setSize(count - droppedOnRead);
}

void KArray::describe(KJsonWriter& out) const
{
    out.member("size", size);
    out.member("isDirect", isDirect);
    describeElements(out);
}

void KArray::describeElements(KJsonWriter& out) const
{
    out.key("elements");
    out.beginArray();
    int32_t count = std::min(getSize(), size);
    for (int32_t i = 0; i < count; ++i) {
        if (isDirect)
            out.value(directSlots()[i]);
        else
            out.object(objectSlots()[i]);
    }
    out.endArray();
}
