#include "project/legacy/ZArray.h"

#include "project/legacy/ZBag.h"
#include "project/legacy/ZFile.h"

namespace {

uint32_t swapped(uint32_t value)
{
    return (value >> 24) | ((value >> 8) & 0xFF00u) | ((value << 8) & 0xFF0000u) | (value << 24);
}

bool readDirect(ZFile& file, const ZArray::Visitor& visitor, int32_t size, bool otherOrder)
{
    if (!file.couldHold(size, 4)) {
        file.fail("Index Out Of Range", "ZArray::operator[]");
        return false;
    }
    for (int32_t slot = 0; slot < size; ++slot) {
        uint32_t value = uint32_t(file.readLong());
        if (visitor.direct)
            visitor.direct(slot, otherOrder ? swapped(value) : value);
    }
    return !file.failed();
}

bool readObjects(ZFile& file, const ZArray::Visitor& visitor, int32_t size)
{
    // Every slot takes at least its class id.
    if (!file.couldHold(size, 4)) {
        file.fail("Index Out Of Range", "ZArray::operator[]");
        return false;
    }
    for (int32_t slot = 0; slot < size && !file.failed(); ++slot) {
        int32_t id = file.readLong();
        if (id == 0 || file.failed())
            continue;
        ZClass::Kind kind;
        if (!ZClass::findClass(file, id, kind))
            return false;
        if (!visitor.object) {
            file.fail("Array Is Not Direct", "ZArray::operator[]");
            return false;
        }
        ZDepthGuard depth(file);
        if (!depth.ok() || !visitor.object(slot, kind))
            return false;
    }
    return !file.failed();
}

} // namespace

bool ZArray::read(ZFile& file, const Visitor& visitor, int32_t& size)
{
    int32_t version = 0;
    size = 0;
    if (!ZClass::readClassInfo(file, ZClass::Array, version))
        return false;
    size = file.readLong();
    bool direct = file.readBool();
    bool otherOrder = version >= 2 && file.readBool();
    if (file.failed())
        return false;
    if (size < 0) {
        file.fail("Negative size.", "ZArray::readFromFile");
        return false;
    }
    return direct ? readDirect(file, visitor, size, otherOrder) : readObjects(file, visitor, size);
}

bool ZBag::read(ZFile& file, const ZArray::Visitor& visitor, int32_t& usedSize)
{
    int32_t version = 0;
    usedSize = 0;
    if (!ZClass::readClassInfo(file, ZClass::Bag, version))
        return false;
    int32_t size = 0;
    if (!ZArray::read(file, visitor, size))
        return false;
    usedSize = file.readLong();
    int32_t growSize = file.readLong();
    int32_t minSize = file.readLong();
    if (file.failed())
        return false;
    if (growSize <= 0) {
        file.fail("GrowSize Must Be Positive!.", "ZBag::readFromFile");
        return false;
    }
    if (minSize < 0) {
        file.fail("MinSize Must Be Positive!.", "ZBag::readFromFile");
        return false;
    }
    if (usedSize < 0 || usedSize > size) {
        file.fail("Index Out Of Range", "ZArray::operator[]");
        return false;
    }
    return true;
}
