// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// While one lives, allocations far beyond what the tests need fail, as they do on a small panel.

#ifndef TESTS_UNIT_SHORT_MEMORY_H
#define TESTS_UNIT_SHORT_MEMORY_H

#include <sys/resource.h>

class ShortMemory
{
public:
    ShortMemory();
    ~ShortMemory();

private:
    ShortMemory(const ShortMemory &);
    ShortMemory &operator=(const ShortMemory &);

    struct rlimit before;
};

#endif
