#pragma once

#include <cstddef>
#include <cstdint>

// The raw allocator beneath every object and buffer of the framework.
class KMemory {
public:
    static void* allocate(size_t size, bool clear);
    static void dispose(void* block);
    // Note the order: source first.
    static void copy(const void* source, void* destination, size_t size);
    static void clear(void* block, size_t size);
    static bool isEqual(const void* p, const void* q, size_t size);
    // Available physical memory plus swap, in bytes.
    static uint64_t freeMemory();
};
