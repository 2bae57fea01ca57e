// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The figures on the report page, each found in one pass and in memory that does not grow with the recording.

#ifndef HOST_RECORDING_STATISTICS_H
#define HOST_RECORDING_STATISTICS_H

#include "host/recording/samples.h"

#include <map>
#include <optional>
#include <vector>

namespace host {

struct Trend
{
    double least;
    double most;
    double mean; // over the time that each value held
    double last;
    bool isWhole; // all values were whole numbers
};

// Takes the samples of a value one by one, in the order of the file.
class TrendCounter
{
public:
    void add(const RecordedSample &sample);

    int samples() const { return count; }

    // A value holds until the next sample, the last one until the end. Nothing when there was no number at
    // all.
    std::optional<Trend> upTo(qint64 end) const;

private:
    void hold(qint64 until);

    RecordedSample last = {0, 0, true};
    double least = 0;
    double most = 0;
    double mean = 0; // of the time before the last sample
    double weight = 0;
    double plainMean = 0; // each sample counted once
    double lastValue = 0;
    bool isWhole = true;
    int count = 0; // without gaps
};

struct TimeBin
{
    double from;
    double to; // not included; 0 for the last, which has no end
    int count;
};

// Counts answer times, in milliseconds: up to a second to a tenth of one, as watch writes them, longer ones
// to four digits.
class AnswerCounter
{
public:
    // The time must not be below 0.
    void add(double milliseconds);

    int count() const { return total; }

    // These need one answer at least.
    double longest() const { return greatest; }

    // The smallest of the times that so many per cent of them do not exceed.
    double percentile(int percent) const;

    // Counts the times in some ten bins of a round width, which is chosen so that most of them are told
    // apart.
    std::vector<TimeBin> bins() const;

private:
    std::map<qint64, int> counts; // by tenths of a millisecond
    int total = 0;
    double greatest = 0;
};

// Counts points in time. The longer the time, the coarser: there are thousands of places in it.
class TimeCounter
{
public:
    void add(qint64 time);

    // How many there were in each of so many equal parts of the time from begin to end.
    std::vector<int> columns(qint64 begin, qint64 end, int count) const;

private:
    void coarsen();

    qint64 width = 1; // milliseconds that are counted together
    std::map<qint64, int> counts;
};

} // namespace host

#endif
