#include "kernel/KMemory.h"

#include "kernel/KErrorHandler.h"

#include <cstdlib>
#include <cstring>
#include <unistd.h>

void* KMemory::allocate(size_t size, bool clear)
{
    void* block = clear ? std::calloc(1, size ? size : 1) : std::malloc(size ? size : 1);
    if (!block)
        KErrorHandler::raiseError(KError::OutOfMemory);
    return block;
}

void KMemory::dispose(void* block)
{
    if (!block) {
        KErrorHandler::raiseError(KError::DisposePointerNull);
        return;
    }
    std::free(block);
}

void KMemory::copy(const void* source, void* destination, size_t size)
{
    if (size)
        std::memmove(destination, source, size);
}

void KMemory::clear(void* block, size_t size)
{
    if (size)
        std::memset(block, 0, size);
}

bool KMemory::isEqual(const void* p, const void* q, size_t size)
{
    if (p == q)
        return true;
    return std::memcmp(p, q, size) == 0;
}

uint64_t KMemory::freeMemory()
{
    long pages = sysconf(_SC_AVPHYS_PAGES);
    long pageSize = sysconf(_SC_PAGESIZE);
    if (pages < 0 || pageSize < 0)
        return 0;
    return uint64_t(pages) * uint64_t(pageSize);
}
