// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

// malloc() for programs: the one that they would have without this file, but that it ends them when there is
// no memory left. Every library of the program looks for it in the program first.

#include "common/end_of_memory.h"

#include <cstddef>

#include <dlfcn.h>

extern "C" {
// The C library's own, by the names that nobody replaces.
void *libraryMalloc(size_t size) __asm__("__libc_malloc");
void *libraryCalloc(size_t count, size_t size) __asm__("__libc_calloc");
void *libraryRealloc(void *memory, size_t size) __asm__("__libc_realloc");
}

namespace common {

namespace {

// The allocator that the program would have without this file: the C library's, or one that was preloaded.
// Looking it up may allocate, too.
template <typename Function> Function *nextAllocator(const char *name, Function *own)
{
    static Function *found = nullptr;
    static bool isLookingUp = false;
    if (!found && !isLookingUp) {
        isLookingUp = true;
        found = reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
        isLookingUp = false;
    }
    return found ? found : own;
}

// Nothing is not too little for a size of 0.
void *memoryOrEnd(void *memory, size_t size)
{
    return memory || size == 0 ? memory : (endOfMemory(), nullptr);
}

} // namespace

} // namespace common

extern "C" {

__attribute__((visibility("default"))) void *malloc(size_t size)
{
    void *const memory = common::nextAllocator("malloc", libraryMalloc)(size);
    return common::memoryOrEnd(memory, size);
}

__attribute__((visibility("default"))) void *calloc(size_t count, size_t size)
{
    void *const memory = common::nextAllocator("calloc", libraryCalloc)(count, size);
    return common::memoryOrEnd(memory, count && size);
}

__attribute__((visibility("default"))) void *realloc(void *before, size_t size)
{
    void *const memory = common::nextAllocator("realloc", libraryRealloc)(before, size);
    return common::memoryOrEnd(memory, size);
}
}
