// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/broker/rate_limit.h"

namespace host {

bool RateLimit::take(std::chrono::steady_clock::time_point now)
{
    while (!taken.empty() && now - taken.front() >= std::chrono::seconds(1))
        taken.pop_front();
    if (int(taken.size()) >= most)
        return false;
    taken.push_back(now);
    return true;
}

} // namespace host
