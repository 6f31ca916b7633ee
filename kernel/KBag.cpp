#include "kernel/KBag.h"

#include "kernel/KClass.h"
#include "kernel/KClassWriter.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KStreamReading.h"
#include "kernel/KThingPtr.h"

#include <algorithm>

K_DEFINE_CLASS(KBag, KArray)

KBag::KBag() = default;

KBag::KBag(const KBag& other)
    : KArray(other)
    , usedSize(std::min(other.usedSize, getCapacity()))
    , growSize(other.growSize)
    , minSize(other.minSize)
{
}

KBag::~KBag()
{
    // The array's destructor releases every slot.
    usedSize = 0;
}

KBag& KBag::operator=(const KBag& other)
{
    if (this == &other)
        return *this;
    KArray::operator=(other);
    usedSize = std::min(other.usedSize, getCapacity());
    growSize = other.growSize;
    minSize = other.minSize;
    return *this;
}

KThing* KBag::deepCopy() const
{
    auto* copy = new KBag();
    copy->setIsDirect(getIsDirect());
    copy->setCompareProc(getCompareProc());
    copy->setSortOrder(getSortOrder());
    copy->growSize = growSize;
    copy->minSize = minSize;
    copy->KArray::setSize(getCapacity());
    deepCopyElementsInto(*copy, usedSize);
    copy->usedSize = std::min(usedSize, copy->getCapacity());
    return copy;
}

void KBag::setSize(int32_t n)
{
    KArray::setSize(n);
    usedSize = std::min(usedSize, getCapacity());
}

int32_t KBag::getSize() const { return usedSize; }

bool KBag::isEmpty() const { return usedSize == 0; }

void KBag::setGrowSize(int32_t grow)
{
    if (usedSize >= 1) {
        KErrorHandler::raiseError(KError::BagCannotChangeGrowSize);
        return;
    }
    if (grow <= 0) {
        KErrorHandler::raiseError(KError::ParameterError);
        return;
    }
    growSize = grow;
}

void KBag::setMinSize(int32_t min)
{
    if (usedSize >= 1) {
        KErrorHandler::raiseError(KError::BagCannotChangeGrowSize);
        return;
    }
    if (min < 0) {
        KErrorHandler::raiseError(KError::ParameterError);
        return;
    }
    minSize = min;
    if (getCapacity() < minSize)
        setSize(minSize);
}

void KBag::growIfFull()
{
    if (getCapacity() == usedSize)
        setSize(int32_t(std::min<int64_t>(int64_t(getCapacity()) + growSize, INT32_MAX)));
}

void KBag::add(const KThingPtr& ptr) { add(ptr.getObject()); }

void KBag::add(KThing& obj)
{
    if (!acceptsObject(obj))
        return;
    growIfFull();
    if (usedSize >= getCapacity())
        return;
    putAt(obj, usedSize);
    ++usedSize;
}

void KBag::addDirectData(int32_t value)
{
    if (!getIsDirect()) {
        KErrorHandler::raiseError(KError::ArrayIsNotDirect);
        return;
    }
    growIfFull();
    if (usedSize >= getCapacity())
        return;
    putDirectDataAt(value, usedSize);
    ++usedSize;
}

bool KBag::openSlot(int32_t pos)
{
    growIfFull();
    if (usedSize >= getCapacity())
        return false;
    if (pos < usedSize) {
        move(pos, pos + 1, usedSize - pos);
        // The moved element now lives one slot up: no release here.
        zeroSlot(pos);
    }
    return true;
}

void KBag::insertAt(const KThingPtr& ptr, int32_t pos) { insertAt(ptr.getObject(), pos); }

void KBag::insertAt(KThing& obj, int32_t pos)
{
    if (pos < 0 || pos > usedSize) {
        KErrorHandler::raiseError(KError::IndexOutOfRange);
        return;
    }
    if (!acceptsObject(obj) || !openSlot(pos))
        return;
    putAt(obj, pos);
    ++usedSize;
}

void KBag::insertDirectDataAt(int32_t value, int32_t pos)
{
    if (pos < 0 || pos > usedSize) {
        KErrorHandler::raiseError(KError::IndexOutOfRange);
        return;
    }
    if (!getIsDirect()) {
        KErrorHandler::raiseError(KError::ArrayIsNotDirect);
        return;
    }
    if (!openSlot(pos))
        return;
    putDirectDataAt(value, pos);
    ++usedSize;
}

void KBag::removeAt(int32_t pos)
{
    if (pos < 0 || pos >= usedSize) {
        KErrorHandler::raiseError(KError::IndexOutOfRange);
        return;
    }
    resetAt(pos);
    if (pos < usedSize - 1)
        move(pos + 1, pos, usedSize - pos - 1);
    zeroSlot(usedSize - 1);
    --usedSize;
    shrinkIfSparse();
}

bool KBag::insertAllAt(KThing* const* objects, int32_t count, int32_t pos)
{
    if (pos < 0 || pos > usedSize || count < 0) {
        KErrorHandler::raiseError(KError::IndexOutOfRange);
        return false;
    }
    int32_t accepted = 0;
    for (int32_t i = 0; i < count; ++i)
        accepted += objects[i] && acceptsObject(*objects[i]) ? 1 : 0;
    if (accepted == 0)
        return true;
    int64_t needed = int64_t(usedSize) + accepted;
    if (needed > INT32_MAX)
        return false;
    // The capacity the objects added one by one would have grown to.
    if (getCapacity() < needed) {
        int64_t step = std::max(growSize, 1);
        int64_t grown = int64_t(getCapacity()) + (needed - getCapacity() + step - 1) / step * step;
        setSize(int32_t(std::min<int64_t>(grown, INT32_MAX)));
    }
    if (getCapacity() < needed)
        return false;
    if (pos < usedSize)
        move(pos, pos + accepted, usedSize - pos);
    for (int32_t i = 0; i < accepted; ++i)
        zeroSlot(pos + i);
    int32_t slot = pos;
    for (int32_t i = 0; i < count; ++i) {
        if (objects[i] && acceptsObject(*objects[i]))
            putAt(*objects[i], slot++);
    }
    usedSize += accepted;
    return true;
}

void KBag::removeSlots(int32_t first, int32_t count)
{
    if (first < 0 || count < 0 || int64_t(first) + count > usedSize) {
        KErrorHandler::raiseError(KError::IndexOutOfRange);
        return;
    }
    if (count == 0)
        return;
    for (int32_t pos = first; pos < first + count; ++pos)
        resetAt(pos);
    int32_t tail = usedSize - first - count;
    if (tail > 0)
        move(first + count, first, tail);
    for (int32_t pos = usedSize - count; pos < usedSize; ++pos)
        zeroSlot(pos);
    usedSize -= count;
    // As far as the slots removed one by one would have shrunk it.
    for (int32_t i = 0; i < count; ++i) {
        int32_t capacity = getCapacity();
        shrinkIfSparse();
        if (getCapacity() == capacity)
            break;
    }
}

void KBag::shrinkIfSparse()
{
    int32_t smaller = getCapacity() - growSize;
    if (usedSize <= smaller && smaller >= minSize)
        setSize(smaller);
}

void KBag::removeObject(const KThingPtr& ptr)
{
    if (ptr.get())
        removeObject(*ptr.get());
}

void KBag::removeObject(const KThing& obj)
{
    int32_t pos = findIndexOf(obj);
    if (pos >= 0)
        removeAt(pos);
}

void KBag::clear()
{
    usedSize = 0;
    setSize(minSize);
    resetAll();
}

void KBag::append(const KBag& other)
{
    if (getIsDirect() != other.getIsDirect())
        return;
    // Counted first, so that a bag appended to itself doubles once.
    int32_t count = other.usedSize;
    for (int32_t i = 0; i < count; ++i) {
        if (getIsDirect()) {
            addDirectData(other.getDirectDataAt(i));
        } else if (KThing* element = other.getAt(i)) {
            add(*element);
        } else {
            // An empty slot stays empty, so positions keep their pairing.
            growIfFull();
            if (usedSize < getCapacity())
                ++usedSize;
        }
    }
}

// Persistence.

void KBag::writeToFile(KFile& file, int32_t version)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    KArray::writeToFile(file, version);
    file.writeLong(usedSize);
    file.writeLong(growSize);
    file.writeLong(minSize);
    writer.end();
}

void KBag::readFromFile(KFile& file)
{
    setDroppedOnRead(0);
    KStreamReading::readMainSection(file, classRecord, [&](int32_t) {
        KArray::readFromFile(file);
        readCounts(file, getCapacity() + getDroppedOnRead());
    });
}

void KBag::readCounts(KFile& file, int32_t slotsInStream)
{
    int32_t used = file.readLong();
    int32_t grow = file.readLong();
    int32_t min = file.readLong();
    // A bag never uses, nor keeps in reserve, more slots than it has.
    bool sound = used >= 0 && used <= slotsInStream && min >= 0 && min <= slotsInStream;
    if (!sound && !file.getError())
        file.setError(KError::CouldNotReadFile);
    // A damaged count may be anything, so clamp before subtracting.
    used = std::clamp(used, 0, slotsInStream < 0 ? 0 : slotsInStream) - getDroppedOnRead();
    usedSize = std::clamp(used, 0, getCapacity());
    growSize = grow < 1 ? 1 : grow;
    minSize = sound ? min : 0;
}

void KBag::describe(KJsonWriter& out) const
{
    out.member("size", getCapacity());
    out.member("isDirect", getIsDirect());
    out.member("usedSize", usedSize);
    out.member("growSize", growSize);
    out.member("minSize", minSize);
    describeElements(out);
}
