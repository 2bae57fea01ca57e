// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/recording/statistics.h"

#include "host/text/number_text.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace host {

namespace {

constexpr double kTenths = 10; // of a millisecond
constexpr double kMostTenths = 1e12;

// The tenths of a millisecond as which a time is counted.
qint64 tenthsOf(double milliseconds)
{
    constexpr double kExact = 10000; // four digits
    const double tenths = std::min(milliseconds * kTenths, kMostTenths);
    double unit = 1;
    while (tenths / unit >= kExact)
        unit *= 10;
    return std::llround(tenths / unit) * std::llround(unit);
}

qint64 floorDivided(qint64 number, qint64 divisor)
{
    return number / divisor - (number % divisor < 0 ? 1 : 0);
}

} // namespace

void TrendCounter::add(const RecordedSample &sample)
{
    hold(sample.time);
    last = sample;
    if (sample.isGap)
        return;
    least = count ? std::min(least, sample.value) : sample.value;
    most = count ? std::max(most, sample.value) : sample.value;
    isWhole = isWhole && std::floor(sample.value) == sample.value;
    lastValue = sample.value;
    ++count;
    plainMean += (sample.value - plainMean) / count;
}

void TrendCounter::hold(qint64 until)
{
    const auto held = double(std::max<qint64>(0, until - last.time));
    if (last.isGap || held <= 0)
        return;
    weight += held;
    mean += (last.value - mean) * (held / weight);
}

std::optional<Trend> TrendCounter::upTo(qint64 end) const
{
    if (count == 0)
        return std::nullopt;
    TrendCounter whole = *this;
    whole.hold(end);
    return Trend{least, most, whole.weight > 0 ? whole.mean : plainMean, lastValue, isWhole};
}

void AnswerCounter::add(double milliseconds)
{
    ++counts[tenthsOf(milliseconds)];
    ++total;
    greatest = std::max(greatest, milliseconds);
}

double AnswerCounter::percentile(int percent) const
{
    const qint64 rank = std::max<qint64>((qint64(total) * percent + 99) / 100, 1);
    qint64 within = 0;
    for (const auto &[tenths, count] : counts) {
        within += count;
        if (within >= rank)
            return std::min(double(tenths) / kTenths, greatest);
    }
    return greatest;
}

std::vector<TimeBin> AnswerCounter::bins() const
{
    constexpr int kBins = 10;
    constexpr double kLeastWidth = 0.1;
    if (total == 0)
        return {};
    const double width = roundStep(std::max(percentile(95) / (kBins - 1), kLeastWidth));
    std::vector<TimeBin> bins;
    bins.reserve(kBins + 1);
    for (int i = 0; i < kBins; ++i)
        bins.push_back({i * width, (i + 1) * width, 0});
    bins.push_back({kBins * width, 0, 0});
    for (const auto &[tenths, count] : counts)
        bins.at(size_t(std::min(double(tenths) / kTenths / width, double(kBins)))).count += count;
    while (bins.back().count == 0)
        bins.pop_back();
    return bins;
}

void TimeCounter::add(qint64 time)
{
    constexpr size_t kMost = 4096;
    ++counts[floorDivided(time, width)];
    while (counts.size() > kMost)
        coarsen();
}

void TimeCounter::coarsen()
{
    std::map<qint64, int> coarser;
    for (const auto &[place, count] : counts)
        coarser[floorDivided(place, 2)] += count;
    counts = std::move(coarser);
    width *= 2;
}

std::vector<int> TimeCounter::columns(qint64 begin, qint64 end, int count) const
{
    std::vector<int> columns(size_t(count), 0);
    const double size = double(end - begin + 1) / count;
    for (const auto &[place, number] : counts) {
        const qint64 middle = place * width + width / 2;
        const auto column = qint64(double(middle - begin) / size);
        columns.at(size_t(std::clamp<qint64>(column, 0, count - 1))) += number;
    }
    return columns;
}

} // namespace host
