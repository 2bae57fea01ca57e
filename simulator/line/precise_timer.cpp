// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/line/precise_timer.h"

#include "simulator/line/line.h"

#include <QString>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <ctime>

#include <sys/timerfd.h>
#include <unistd.h>

namespace sim {

PreciseTimer::PreciseTimer() : descriptor(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC))
{
    if (descriptor < 0) {
        const int reason = errno;
        throw LineError("cannot make a timer: " + QString::fromLocal8Bit(std::strerror(reason)),
                        "end programs that have many files open, and start again");
    }
    notifier = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    connect(notifier.get(), &QSocketNotifier::activated, this, [this] { fire(); });
}

PreciseTimer::~PreciseTimer()
{
    notifier.reset();
    close(descriptor);
}

// A time of zero would stop it.
void PreciseTimer::start(Time wait)
{
    set(std::max(wait, Time(1)));
}

void PreciseTimer::stop()
{
    set(Time::zero());
}

void PreciseTimer::set(Time wait)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(wait);
    itimerspec once = {};
    once.it_value.tv_sec = static_cast<time_t>(seconds.count());
    once.it_value.tv_nsec = static_cast<long>((wait - seconds).count());
    timerfd_settime(descriptor, 0, &once, nullptr);
}

// There is nothing to read when it was started anew after it had fired.
void PreciseTimer::fire()
{
    uint64_t expirations = 0;
    if (read(descriptor, &expirations, sizeof expirations) == sizeof expirations)
        Q_EMIT timeout();
}

} // namespace sim
