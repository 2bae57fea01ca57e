// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Figures of what was watched.

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

// The smallest of the numbers, which are in order, that so many per cent of them do not exceed. There must be
// one.
double percentile(const std::vector<double> &ordered, int percent);

struct TimeBin
{
    double from;
    double to; // not included; 0 for the last, which has no end
    int count;
};

// Some ten bins of a round width, so that the most of the numbers are told apart. The numbers are in order
// and not below 0.
std::vector<TimeBin> distributionOf(const std::vector<double> &ordered);

// 1, 2 or 5 times a power of ten, not below the number, which must be above 0.
double roundStep(double number);

} // namespace host

#endif
