// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "allocation_counter.h"

#include "address_sanitizer.h"

#include <cstddef>

namespace {

bool g_counting = false;
int g_count = 0;
int g_refused = 0; // the number of the allocation that is refused, 0 for none

// Whether this allocation is to be refused.
bool count()
{
    if (!g_counting)
        return false;
    ++g_count;
    return g_count == g_refused;
}

} // namespace

#ifdef UNDER_ADDRESS_SANITIZER

// gcc ships the function without its header.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*allocated)(const volatile void *, size_t),
                                                         void (*released)(const volatile void *));

namespace {

void noteAllocation(const volatile void *, size_t)
{
    count();
}

void noteRelease(const volatile void *) {}

const int g_hooks = __sanitizer_install_malloc_and_free_hooks(noteAllocation, noteRelease);

} // namespace

#else

// The functions of the C library under the names that it keeps for those who replace malloc.
extern "C" {
void *__libc_malloc(size_t size) noexcept;
void *__libc_calloc(size_t number, size_t size) noexcept;
void *__libc_realloc(void *block, size_t size) noexcept;

__attribute__((visibility("default"))) void *malloc(size_t size) noexcept
{
    return count() ? nullptr : __libc_malloc(size);
}

__attribute__((visibility("default"))) void *calloc(size_t number, size_t size) noexcept
{
    return count() ? nullptr : __libc_calloc(number, size);
}

__attribute__((visibility("default"))) void *realloc(void *block, size_t size) noexcept
{
    return count() ? nullptr : __libc_realloc(block, size);
}
}

#endif

void AllocationCounter::start()
{
    startAndRefuse(0);
}

void AllocationCounter::startAndRefuse(int number)
{
    g_refused = number;
    g_count = 0;
    g_counting = true;
}

int AllocationCounter::stop()
{
    g_counting = false;
    return g_count;
}
