// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/recording/statistics.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace host {

std::optional<Trend> trendOf(const std::vector<RecordedSample> &samples, qint64 end)
{
    std::optional<Trend> trend;
    double weighted = 0;
    double weight = 0;
    double plain = 0;
    int count = 0;
    for (size_t i = 0; i < samples.size(); ++i) {
        const RecordedSample &sample = samples.at(i);
        if (sample.isGap)
            continue;
        if (!trend)
            trend = Trend{sample.value, sample.value, 0, 0};
        trend->least = std::min(trend->least, sample.value);
        trend->most = std::max(trend->most, sample.value);
        trend->last = sample.value;
        const qint64 until = i + 1 < samples.size() ? samples.at(i + 1).time : end;
        const auto held = double(std::max<qint64>(0, until - sample.time));
        weighted += sample.value * held;
        weight += held;
        plain += sample.value;
        ++count;
    }
    if (trend)
        trend->mean = weight > 0 ? weighted / weight : plain / count;
    return trend;
}

double percentile(const std::vector<double> &ordered, int percent)
{
    const size_t rank = (ordered.size() * size_t(percent) + 99) / 100;
    return ordered.at(std::max<size_t>(rank, 1) - 1);
}

std::vector<TimeBin> distributionOf(const std::vector<double> &ordered)
{
    constexpr int kBins = 10;
    constexpr double kLeastWidth = 0.1;
    if (ordered.empty())
        return {};
    const double width = roundStep(std::max(percentile(ordered, 95) / (kBins - 1), kLeastWidth));
    std::vector<TimeBin> bins;
    bins.reserve(kBins + 1);
    for (int i = 0; i < kBins; ++i)
        bins.push_back({i * width, (i + 1) * width, 0});
    bins.push_back({kBins * width, 0, 0});
    for (const double number : ordered)
        ++bins.at(size_t(std::min(number / width, double(kBins)))).count;
    while (bins.back().count == 0)
        bins.pop_back();
    return bins;
}

double roundStep(double number)
{
    const double power = std::pow(10, std::floor(std::log10(number)));
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * power >= number)
            return factor * power;
    return 10 * power;
}

} // namespace host
