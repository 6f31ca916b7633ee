#include "kernel/KMemoryBlock.h"

#include "kernel/KClass.h"
#include "kernel/KFile.h"
#include "kernel/KMemory.h"
#include "kernel/native/KNativeFiles.h"

#include <string>

K_DEFINE_CLASS(KMemoryBlock, KThing)

KMemoryBlock::KMemoryBlock(const KMemoryBlock& other)
    : KThing(other)
{
    *this = other;
}

KMemoryBlock::~KMemoryBlock() { release(); }

KMemoryBlock& KMemoryBlock::operator=(const KMemoryBlock& other)
{
    if (this == &other)
        return *this;
    setSize(other.size);
    if (size > 0)
        KMemory::copy(other.data, data, size_t(size));
    return *this;
}

KThing* KMemoryBlock::deepCopy() const { return new KMemoryBlock(*this); }

void KMemoryBlock::release()
{
    if (data)
        KMemory::dispose(data);
    data = nullptr;
    size = 0;
}

void KMemoryBlock::setSize(int32_t newSize)
{
    release();
    if (newSize <= 0)
        return;
    data = static_cast<char*>(KMemory::allocate(size_t(newSize), false));
    if (data)
        size = newSize;
}

void* KMemoryBlock::getAddress(int32_t offset) const
{
    if (offset < 0 || offset >= size)
        return nullptr;
    return data + offset;
}

void KMemoryBlock::putData(int32_t offset, const void* source, int32_t count)
{
    if (offset < 0 || count < 0 || int64_t(offset) + count > size || !source)
        return;
    KMemory::copy(source, data + offset, size_t(count));
}

bool KMemoryBlock::readFromDiskFile(const KFileReference& reference)
{
    release();
    KFile file(reference);
    file.open();
    if (file.getError())
        return false;
    int32_t length = file.getSize();
    setSize(length);
    if (length > 0)
        file.read(data, length);
    file.close();
    if (file.getError()) {
        release();
        return false;
    }
    return true;
}

bool KMemoryBlock::writeToDiskFile(const KFileReference& reference) const
{
    KFile file(reference);
    file.create();
    if (file.getError())
        return false;
    file.open();
    if (size > 0)
        file.write(data, size);
    file.close();
    return file.getError() == 0;
}

KPath KMemoryBlock::resourcePath(const KFileReference& module, int16_t id)
{
    KString name = module.getObjectName() + ".rcdata-" + std::to_string(id).c_str();
    return module.getPath().getChildFile(name);
}

bool KMemoryBlock::readFromResource(int16_t id)
{
    void* block = nullptr;
    int32_t length = 0;
    if (knsReadProgramResource(id, &block, &length)) {
        release();
        data = static_cast<char*>(block);
        size = length;
        return true;
    }
    return readFromResource(KFileReference(KPath(knsProgramFile(), KPath::LinuxPlatform)), id);
}

bool KMemoryBlock::readFromResourcePath(const char* path)
{
    void* block = nullptr;
    int32_t length = 0;
    if (!knsReadProgramResourcePath(path, &block, &length))
        return false;
    release();
    data = static_cast<char*>(block);
    size = length;
    return true;
}

bool KMemoryBlock::readFromResource(const KFileReference& module, int16_t id)
{
    return readFromDiskFile(KFileReference(resourcePath(module, id)));
}

bool KMemoryBlock::writeToResource(const KFileReference& module, int16_t id) const
{
    if (size == 0)
        return true;
    return writeToDiskFile(KFileReference(resourcePath(module, id)));
}
