// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// nanosleep() for programs that load a driver: the system's, but for threads that skip pauses. A plug-in
// looks for it in the program first, which exports it because the C library has one of that name. Sanitizers
// that replace it, too, leave the name to the program.

#include "host/driver/pause_skip.h"

#include <cerrno>
#include <ctime>
#include <utility>

namespace host {

namespace {

thread_local bool skipsPauses = false;

} // namespace

PauseSkip::PauseSkip() : before(std::exchange(skipsPauses, true)) {}

PauseSkip::~PauseSkip()
{
    skipsPauses = before;
}

} // namespace host

extern "C" __attribute__((visibility("default"))) int nanosleep(const timespec *requested,
                                                                timespec *remaining)
{
    if (host::skipsPauses)
        return 0;
    const int error = clock_nanosleep(CLOCK_MONOTONIC, 0, requested, remaining);
    if (error != 0)
        errno = error;
    return error == 0 ? 0 : -1;
}
