// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The figures on the report page.

#ifndef HOST_RECORDING_STATISTICS_H
#define HOST_RECORDING_STATISTICS_H

#include "host/recording/recording.h"

#include <optional>
#include <vector>

namespace host {

struct Trend
{
    double least;
    double most;
    double mean; // over the time that each value held
    double last;
};

// A value holds until the next sample, the last one until the end. Nothing when there is no number at all.
std::optional<Trend> trendOf(const std::vector<RecordedSample> &samples, qint64 end);

// The smallest of the numbers that so many per cent of them do not exceed. They must be in order, and there
// must be one at least.
double percentile(const std::vector<double> &ordered, int percent);

struct TimeBin
{
    double from;
    double to; // not included; 0 for the last, which has no end
    int count;
};

// Counts the numbers in some ten bins of a round width, which is chosen so that most of them are told apart.
// They must be in order and not below 0.
std::vector<TimeBin> distributionOf(const std::vector<double> &ordered);

// The next number from this one on that is 1, 2 or 5 times a power of ten. The number must be above 0.
double roundStep(double number);

} // namespace host

#endif
