// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/recording/samples.h"

#include <algorithm>
#include <iterator>

namespace host {

namespace {

// What may stay of a column, and of how many samples a column is: with eight of them for each column, a list
// that was thinned out has room for a quarter more.
constexpr size_t kKeptOfColumn = 6;
constexpr size_t kSamplesPerColumn = 8;

using Place = Samples::const_iterator;

bool isEarlier(const RecordedSample &a, const RecordedSample &b)
{
    return a.time < b.time;
}

bool isGap(const RecordedSample &sample)
{
    return sample.isGap;
}

bool isValue(const RecordedSample &sample)
{
    return !sample.isGap;
}

// The samples of a column that stay, in their order; some of them may be the same one.
std::vector<Place> keptOf(Place first, Place last)
{
    std::vector<Place> kept = {first, std::find_if(first, last, isGap), last - 1};
    Place least = std::find_if(first, last, isValue);
    Place most = least;
    Place lastValue = least;
    for (Place sample = least; sample != last; ++sample) {
        if (sample->isGap)
            continue;
        least = sample->value < least->value ? sample : least;
        most = sample->value > most->value ? sample : most;
        lastValue = sample;
    }
    kept.insert(kept.end(), {least, most, lastValue});
    std::sort(kept.begin(), kept.end());
    kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
    if (kept.back() == last) // there was no gap, or no value
        kept.pop_back();
    return kept;
}

} // namespace

bool addSample(Samples &samples, const RecordedSample &sample, size_t most)
{
    if (!samples.empty()) {
        const RecordedSample &last = samples.back();
        const bool isSame = last.isGap == sample.isGap && (sample.isGap || last.value == sample.value);
        if (isSame && last.time <= sample.time)
            return false;
    }
    const bool isThinned = limitSamples(samples, most - 1);
    samples.push_back(sample);
    return isThinned;
}

bool limitSamples(Samples &samples, size_t most)
{
    if (samples.size() <= most)
        return false;
    thinOut(samples, most);
    return true;
}

void thinOut(Samples &samples, size_t most)
{
    sortByTime(samples);
    samples = thinnedOut(samples, samples.front().time, samples.back().time,
                         std::max<size_t>(1, most / kSamplesPerColumn));
}

void sortByTime(Samples &samples)
{
    if (!std::is_sorted(samples.begin(), samples.end(), isEarlier))
        std::stable_sort(samples.begin(), samples.end(), isEarlier);
}

Samples thinnedOut(const Samples &samples, qint64 begin, qint64 end, size_t columns)
{
    const double width = double(end - begin + 1) / double(columns);
    const auto columnOf = [&](const RecordedSample &sample) {
        return qint64(double(sample.time - begin) / width);
    };
    Samples thinned;
    for (Place first = samples.begin(); first != samples.end();) {
        const qint64 column = columnOf(*first);
        const Place last = std::find_if(
            first, samples.end(), [&](const RecordedSample &sample) { return columnOf(sample) != column; });
        if (size_t(last - first) <= kKeptOfColumn)
            thinned.insert(thinned.end(), first, last);
        else
            for (const Place &kept : keptOf(first, last))
                thinned.push_back(*kept);
        first = last;
    }
    return thinned;
}

} // namespace host
