// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "timing.h"

#include <cerrno>
#include <ctime>

namespace {

const quint32 kNanosecondsPerMillisecond = 1000000;
const quint32 kNanosecondsPerSecond = 1000000000;

} // namespace

void HRSleep(unsigned long ms)
{
    const quint32 nanoseconds = static_cast<quint32>(ms) * kNanosecondsPerMillisecond;
    if (nanoseconds == 0)
        return;
    timespec rest;
    rest.tv_sec = static_cast<time_t>(nanoseconds / kNanosecondsPerSecond);
    rest.tv_nsec = static_cast<long>(nanoseconds % kNanosecondsPerSecond);
    while (nanosleep(&rest, &rest) == -1 && errno == EINTR) {
    }
}

qint64 CurrentMSecsSinceBoot()
{
    timespec now = timespec();
    clock_gettime(CLOCK_MONOTONIC, &now);
    return qint64(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}
