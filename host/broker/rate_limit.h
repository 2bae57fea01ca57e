// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// At most so many of something within any second. The time is handed in.

#ifndef HOST_BROKER_RATE_LIMIT_H
#define HOST_BROKER_RATE_LIMIT_H

#include <chrono>
#include <deque>

namespace host {

class RateLimit
{
public:
    explicit RateLimit(int mostPerSecond) : most(mostPerSecond) {}

    // Whether another one is allowed now; it counts if it is.
    bool take(std::chrono::steady_clock::time_point now);

private:
    int most;
    std::deque<std::chrono::steady_clock::time_point> taken; // within the last second
};

} // namespace host

#endif
