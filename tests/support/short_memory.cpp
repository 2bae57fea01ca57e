// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "short_memory.h"

#include <cstdlib>
#include <fstream>
#include <new>

#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define SHORT_MEMORY_UNDER_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define SHORT_MEMORY_UNDER_SANITIZER
#endif
#endif

#ifdef SHORT_MEMORY_UNDER_SANITIZER

namespace {

// The sanitizers reserve far more address space than they use, so their own allocators set the limit. Blocks
// of the operator new below are malloc's, whoever deletes them.
const char kOptions[] = "allocator_may_return_null=1:max_allocation_size_mb=64:alloc_dealloc_mismatch=0";

} // namespace

extern "C" {
__attribute__((visibility("default"))) const char *__asan_default_options();
__attribute__((visibility("default"))) const char *__tsan_default_options();

const char *__asan_default_options()
{
    return kOptions;
}

const char *__tsan_default_options()
{
    return kOptions;
}
}

ShortMemory::ShortMemory() : before() {}
ShortMemory::~ShortMemory() {}

// Theirs ends the program when there is no memory.
__attribute__((visibility("default"))) void *operator new(size_t size)
{
    void *block = std::malloc(size);
    if (!block)
        throw std::bad_alloc();
    return block;
}

__attribute__((visibility("default"))) void *operator new[](size_t size)
{
    return operator new(size);
}

__attribute__((visibility("default"))) void operator delete(void *block) noexcept
{
    std::free(block);
}

__attribute__((visibility("default"))) void operator delete[](void *block) noexcept
{
    operator delete(block);
}

#else

namespace {

const rlim_t kSpare = 64 * 1024 * 1024; // bytes

rlim_t bytesInUse()
{
    rlim_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

} // namespace

ShortMemory::ShortMemory() : before()
{
    getrlimit(RLIMIT_AS, &before);
    struct rlimit tight = before;
    tight.rlim_cur = bytesInUse() + kSpare;
    setrlimit(RLIMIT_AS, &tight);
}

ShortMemory::~ShortMemory()
{
    setrlimit(RLIMIT_AS, &before);
}

#endif
