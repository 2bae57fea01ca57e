// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/recording/trend_chart.h"

#include "host/recording/statistics.h"

#include <QString>

#include <algorithm>
#include <cmath>
#include <vector>

namespace host {

namespace {

constexpr int kWidth = 1000;
constexpr int kHeight = 240;

QString coordinate(double number)
{
    return QString::number(std::round(number * 10) / 10, 'g', 7);
}

double xOf(qint64 time, const ChartFrame &frame)
{
    const auto span = double(std::max<qint64>(1, frame.end - frame.begin));
    return double(time - frame.begin) / span * frame.width;
}

double yOf(double value, const ChartFrame &frame)
{
    return (frame.top - value) / (frame.top - frame.bottom) * frame.height;
}

using Samples = std::vector<RecordedSample>;

bool isLess(const RecordedSample &a, const RecordedSample &b)
{
    return a.value < b.value;
}

void addThinned(Samples &thinned, Samples::const_iterator first, Samples::const_iterator last)
{
    Samples kept = {*first, *std::min_element(first, last, isLess), *std::max_element(first, last, isLess),
                    *(last - 1)};
    std::sort(kept.begin(), kept.end(),
              [](const RecordedSample &a, const RecordedSample &b) { return a.time < b.time; });
    thinned.insert(thinned.end(), kept.begin(), kept.end());
}

// Leaves out samples that fall into the same column of the picture; gaps and the samples beside them stay.
Samples thinnedOut(const Samples &samples, const ChartFrame &frame)
{
    constexpr int kFew = 4;
    Samples thinned;
    for (auto first = samples.begin(); first != samples.end();) {
        const int column = int(xOf(first->time, frame));
        auto last = first;
        while (last != samples.end() && !last->isGap && int(xOf(last->time, frame)) == column)
            ++last;
        if (last - first > kFew)
            addThinned(thinned, first, last);
        else
            thinned.insert(thinned.end(), first, last);
        if (last != samples.end() && last->isGap)
            thinned.push_back(*last++);
        first = last;
    }
    return thinned;
}

} // namespace

// A trend of one level alone lies in the middle.
ChartFrame chartFrame(const Recording &recording, double least, double most)
{
    constexpr int kSteps = 4;
    constexpr double kLeastStep = 1e-300;
    const double size = std::abs(least);
    const double room = most > least ? 0 : size > 0 ? size * 0.1 : 1;
    const double step = roundStep(std::max((most - least + 2 * room) / kSteps, kLeastStep));
    const double bottom = std::floor((least - room) / step) * step;
    const double top = std::ceil((most + room) / step) * step;
    return {recording.begin, recording.end, bottom, top, kWidth, kHeight};
}

QString trendPath(const std::vector<RecordedSample> &samples, const ChartFrame &frame)
{
    QString path;
    QString level; // empty in a gap
    for (const RecordedSample &sample : thinnedOut(samples, frame)) {
        const QString x = coordinate(xOf(sample.time, frame));
        const QString y = sample.isGap ? QString() : coordinate(yOf(sample.value, frame));
        if (level.isEmpty() && !y.isEmpty())
            path += 'M' + x + ' ' + y;
        else if (level != y)
            path += 'H' + x + (y.isEmpty() ? y : 'V' + y);
        level = y;
    }
    return level.isEmpty() ? path : path + 'H' + coordinate(frame.width);
}

} // namespace host
