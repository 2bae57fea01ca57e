// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "fake_sleep.h"

#include <cerrno>
#include <ctime>

namespace {

thread_local QList<qint64> g_pauses;
thread_local int g_interruptions = 0;
thread_local bool g_failure = false;
thread_local void (*g_listener)(qint64) = nullptr;

const qint64 kNanosecondsPerSecond = 1000000000;

} // namespace

void FakeSleep::reset()
{
    g_pauses.clear();
    g_interruptions = 0;
    g_failure = false;
    g_listener = nullptr;
}

QList<qint64> FakeSleep::pauses()
{
    return g_pauses;
}

void FakeSleep::interruptNext(int times)
{
    g_interruptions = times;
}

void FakeSleep::failNext()
{
    g_failure = true;
}

void FakeSleep::setListener(void (*listener)(qint64))
{
    g_listener = listener;
}

// Found by loaded libraries, too, however the rest of the program is compiled.
extern "C" __attribute__((visibility("default"))) int nanosleep(const struct timespec *requested,
                                                                struct timespec *remaining)
{
    const qint64 nanoseconds = qint64(requested->tv_sec) * kNanosecondsPerSecond + qint64(requested->tv_nsec);
    if (g_listener)
        g_listener(nanoseconds);
    g_pauses.append(nanoseconds);
    if (g_failure) {
        g_failure = false;
        errno = EINVAL;
        return -1;
    }
    if (g_interruptions > 0) {
        --g_interruptions;
        const qint64 rest = nanoseconds / 2;
        remaining->tv_sec = static_cast<time_t>(rest / kNanosecondsPerSecond);
        remaining->tv_nsec = static_cast<long>(rest % kNanosecondsPerSecond);
        errno = EINTR;
        return -1;
    }
    return 0;
}
