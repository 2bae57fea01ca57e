// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a curve is drawn from: as many samples as a picture can show, however many were recorded.

#ifndef HOST_RECORDING_SAMPLES_H
#define HOST_RECORDING_SAMPLES_H

#include <QtGlobal>

#include <cstddef>
#include <vector>

namespace host {

struct RecordedSample
{
    qint64 time;  // milliseconds since 1970-01-01 UTC
    double value; // of no meaning in a gap
    bool isGap;   // from here on nothing is known: the item failed, or it was no number
};

using Samples = std::vector<RecordedSample>;

// Appends a sample, but for one that says what the last one said. What is there already is thinned out first
// when there are so many of them; tells whether it was.
bool addSample(Samples &samples, const RecordedSample &sample, size_t most);

// Thins the samples out when there are more than so many, which must be 8 at least; tells whether there were.
bool limitSamples(Samples &samples, size_t most);

// Thins the samples out as when there are more than so many: those that came last are as far apart then as
// the others, which were thinned out before.
void thinOut(Samples &samples, size_t most);

void sortByTime(Samples &samples);

// Divides the time into columns. Of each column stay its first and last sample, its least and greatest value
// and its first gap: what a picture of such columns can show. The samples must be in the order of their
// times.
Samples thinnedOut(const Samples &samples, qint64 begin, qint64 end, size_t columns);

} // namespace host

#endif
