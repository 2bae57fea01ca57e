// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "short_memory.h"

#include <fstream>

#include <unistd.h>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SHORT_MEMORY_UNDER_ASAN
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define SHORT_MEMORY_UNDER_ASAN
#endif

#ifdef SHORT_MEMORY_UNDER_ASAN

// The sanitizer reserves far more address space than it uses, so its own allocator sets the limit.
extern "C" __attribute__((visibility("default"))) const char *__asan_default_options();
const char *__asan_default_options()
{
    return "allocator_may_return_null=1:max_allocation_size_mb=64";
}

ShortMemory::ShortMemory() : before() {}
ShortMemory::~ShortMemory() {}

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
