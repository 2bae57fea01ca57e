// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Recordings of watch -o, of any bytes and cut anywhere: their figures go together.
//
//    input := recording, in CSV

#include "fuzzing.h"
#include "refusal.h"

#include "host/base/failure.h"
#include "host/recording/recording.h"

#include <algorithm>

using fuzz::require;
using namespace host;

namespace {

void checkSeries(const RecordedSeries &series, const Recording &recording)
{
    require(series.item >= 0 && series.item < recording.items.size(), "a value belongs to an item");
    require(series.answers >= 0 && series.errors >= 0 && series.errors <= recording.errors.count(),
            "errors of a value are among all errors");
    require(std::is_sorted(series.samples.begin(), series.samples.end(),
                           [](const RecordedSample &a, const RecordedSample &b) { return a.time < b.time; }),
            "samples come in the order of their times");
    for (const RecordedSample &sample : series.samples)
        require(sample.time >= recording.begin && sample.time <= recording.end,
                "a sample lies within the recording");
    const std::optional<Trend> trend = series.trend.upTo(recording.end);
    require(!trend || (trend->least <= trend->last && trend->last <= trend->most),
            "a value lies between the extremes");
}

// Samples of any times and values in a list that is short: what stays of them is in the order of their times,
// with the least and the greatest.
void addSamples(const uint8_t *data, size_t size)
{
    constexpr size_t kMost = 16;
    Samples samples;
    int least = 255;
    int most = 0;
    for (size_t i = 0; i + 1 < size; i += 2) {
        const int value = data[i + 1];
        const bool isGap = value % 16 == 15;
        addSample(samples, {qint64(i) * 10 + data[i], double(value), isGap}, kMost);
        least = isGap ? least : std::min(least, value);
        most = isGap ? most : std::max(most, value);
    }
    limitSamples(samples, kMost);
    require(samples.size() <= 2 * kMost, "samples are thinned out");
    const auto isWanted = [&](int wanted) {
        return std::any_of(samples.begin(), samples.end(), [&](const RecordedSample &sample) {
            return !sample.isGap && int(sample.value) == wanted;
        });
    };
    require(least > most || (isWanted(least) && isWanted(most)), "the extremes stay");
    if (samples.empty())
        return;
    thinOut(samples, kMost);
    require(std::is_sorted(samples.begin(), samples.end(),
                           [](const RecordedSample &a, const RecordedSample &b) { return a.time < b.time; }),
            "samples are put in the order of their times");
}

// Causes of which there are too many: the first byte says how many, the others which come again.
void addCauses(const uint8_t *data, size_t size)
{
    ErrorCauses causes;
    const int count = size > 0 ? data[0] * 5 : 0;
    for (int i = 0; i < count; ++i)
        causes.add(QString::number(i), i);
    for (size_t i = 1; i < size; ++i)
        causes.add(QString::number(data[i]), data[i] % 40);
    require(causes.count() == count + int(size > 0 ? size - 1 : 0), "every error counts");
    const std::vector<ErrorCause> commonest = causes.commonest(20);
    for (size_t i = 1; i < commonest.size(); ++i)
        require(commonest[i - 1].count >= commonest[i].count, "the commonest come first");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    addSamples(data, size);
    addCauses(data, size);
    Recording recording;
    try {
        recording = parseRecording("log.csv", fuzz::arrayOf(data, size));
    } catch (const Failure &failure) {
        fuzz::requireReason(failure);
        return 0;
    }
    require(recording.begin <= recording.end && recording.answers >= 0 && recording.leftOut >= 0,
            "a recording ends behind its beginning");
    require(recording.ports.size() <= 20 && recording.stations.size() <= 20, "there is room for the places");
    for (const RecordedSeries &series : recording.series)
        checkSeries(series, recording);
    int errors = 0;
    for (const ErrorCause &cause : recording.errors.commonest(3))
        errors += cause.count;
    require(errors <= recording.errors.count(), "the commonest errors are among all errors");
    return 0;
}
