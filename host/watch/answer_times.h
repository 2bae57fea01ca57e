// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The times that answers took, counted in buckets, so that as much memory is enough for a day as for a
// minute.
//
// Each bucket is 1.9 % wider than the one before, and stands for its middle, which is less than 1 % away from
// any time in it. 830 of them reach from 0.1 ms to 10 min; times outside are counted in the first and the
// last.

#ifndef HOST_WATCH_ANSWER_TIMES_H
#define HOST_WATCH_ANSWER_TIMES_H

#include <chrono>
#include <vector>

namespace host {

using WatchDuration = std::chrono::steady_clock::duration;

class AnswerTimes
{
public:
    AnswerTimes();

    // Takes the time of one request, from the call of the driver to its data.
    void add(WatchDuration time);

    // These are 0 without answers.
    int count() const { return answers; }
    WatchDuration mean() const;
    WatchDuration longest() const { return maximum; }

    // The least time within which so many per cent of the answers were there: the median for 50. It is at
    // most 1 % off from 0.1 ms to 10 min, and never longer than the longest.
    WatchDuration percentile(double percent) const;

private:
    std::vector<int> buckets; // answers in each
    int answers = 0;
    WatchDuration total{};
    WatchDuration maximum{};
};

} // namespace host

#endif
