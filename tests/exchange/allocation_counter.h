// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Counts what the whole program takes from the heap, Qt's own part included. It stands in front of the
// C library's allocator, or, in a build with AddressSanitizer, hooks into the sanitizer's.

#ifndef TESTS_ALLOCATION_COUNTER_H
#define TESTS_ALLOCATION_COUNTER_H

namespace AllocationCounter {

// Allocations and reallocations from here on are counted.
void start();

// Their number since start().
int stop();

// The same, and the one of that number, counted from 1, is refused; none for 0. Not in a build with
// AddressSanitizer.
void startAndRefuse(int number);

// The same, and so are all behind it.
void startAndRefuseFrom(int number);

} // namespace AllocationCounter

#endif
