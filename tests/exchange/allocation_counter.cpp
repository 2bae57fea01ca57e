// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "allocation_counter.h"

#include "address_sanitizer.h"

#include <cstddef>
#include <limits>

namespace {

bool g_counting = false;
int g_count = 0;
int g_firstRefused = 0; // numbers of the allocations that are refused, 0 and 0 for none
int g_lastRefused = 0;

// Whether this allocation is to be refused.
bool count()
{
    if (!g_counting)
        return false;
    ++g_count;
    return g_count >= g_firstRefused && g_count <= g_lastRefused;
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

namespace {

void startRefusing(int first, int last)
{
    g_firstRefused = first;
    g_lastRefused = last;
    g_count = 0;
    g_counting = true;
}

} // namespace

void AllocationCounter::start()
{
    startAndRefuse(0);
}

void AllocationCounter::startAndRefuse(int number)
{
    startRefusing(number, number);
}

void AllocationCounter::startAndRefuseFrom(int number)
{
    startRefusing(number, std::numeric_limits<int>::max());
}

int AllocationCounter::stop()
{
    g_counting = false;
    return g_count;
}
