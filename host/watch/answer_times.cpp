// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/watch/answer_times.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr size_t kBuckets = 830;
constexpr double kGrowth = 1.019;
constexpr Milliseconds kShortest(0.1);

size_t bucketOf(WatchDuration time)
{
    const double ratio = std::max(Milliseconds(time) / kShortest, 1.0);
    return std::min(size_t(std::log(ratio) / std::log(kGrowth)), kBuckets - 1);
}

WatchDuration middleOf(size_t bucket)
{
    return std::chrono::duration_cast<WatchDuration>(kShortest * std::pow(kGrowth, double(bucket) + 0.5));
}

} // namespace

AnswerTimes::AnswerTimes() : buckets(kBuckets) {}

void AnswerTimes::add(WatchDuration time)
{
    ++buckets[bucketOf(time)];
    ++answers;
    total += time;
    maximum = std::max(maximum, time);
}

WatchDuration AnswerTimes::mean() const
{
    return answers ? total / answers : WatchDuration();
}

WatchDuration AnswerTimes::percentile(double percent) const
{
    int within = 0;
    for (size_t bucket = 0; bucket < kBuckets; ++bucket) {
        within += buckets[bucket];
        if (within > 0 && 100.0 * within >= percent * answers)
            return std::min(middleOf(bucket), maximum);
    }
    return WatchDuration();
}

} // namespace host
