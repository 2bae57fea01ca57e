// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Linked where coverage is counted: keeps the counts of a process that ends without exit(), which is when
// they are written otherwise, and those of the others from a process that cannot write whole files. The
// linker puts these functions in the place of the C library's (--wrap).

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>

#include <sys/resource.h>
#include <unistd.h>

extern "C" {
void __gcov_dump();
void __real__exit(int code) __attribute__((noreturn));
int __real_raise(int signalNumber);

void __wrap__exit(int code) __attribute__((noreturn));
int __wrap_raise(int signalNumber);
void s7ppi_keep_counts(int signalNumber);
}

namespace {

// Where files are limited in size, the files of the counts would be cut.
bool mayWriteCounts()
{
    rlimit size = {};
    getrlimit(RLIMIT_FSIZE, &size);
    return size.rlim_cur == RLIM_INFINITY;
}

void dumpCounts()
{
    if (mayWriteCounts())
        __gcov_dump();
}

// The last that exit() calls before the counts are written.
void spareCountsOfOthers(int code, void *)
{
    if (mayWriteCounts())
        return;
    std::cout.flush();
    std::fflush(nullptr);
    __real__exit(code);
}

// In front of all other constructors, so that what they have made is destroyed when the function is called.
__attribute__((constructor(101))) void prepareToSpare()
{
    on_exit(spareCountsOfOthers, nullptr);
}

// A failed assertion aborts inside Qt.
__attribute__((constructor)) void keepCountsOfAborts()
{
    std::signal(SIGABRT, s7ppi_keep_counts);
}

} // namespace

void __wrap__exit(int code)
{
    dumpCounts();
    __real__exit(code);
}

int __wrap_raise(int signalNumber)
{
    dumpCounts();
    return __real_raise(signalNumber);
}

// Ends the process as the signal would have done.
void s7ppi_keep_counts(int signalNumber)
{
    std::signal(signalNumber, SIG_DFL);
    __wrap_raise(signalNumber);
}
