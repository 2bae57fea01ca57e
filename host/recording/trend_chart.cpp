// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/recording/trend_chart.h"

#include "host/base/filled.h"
#include "host/recording/statistics.h"
#include "host/text/number_text.h"
#include <QString>

#include <algorithm>
#include <cmath>
#include <optional>

namespace host {

namespace {

constexpr int kWidth = 1000;
constexpr int kHeight = 240;
constexpr int kMargin = 15;

QString coordinate(double number)
{
    return QString::number(std::round(number * 10) / 10, 'g', 7);
}

Samples drawn(const Samples &samples, const ChartFrame &frame)
{
    return thinnedOut(samples, frame.begin, frame.end, size_t(frame.width));
}

QString area(double left, double right, double top, double bottom)
{
    return filled("M%1 %2H%3V%4H%1Z", coordinate(left), coordinate(top), coordinate(right),
                  coordinate(bottom));
}

// A picture has some width even if all happened at once.
qint64 endOf(const Recording &recording)
{
    return std::max(recording.end, recording.begin + 1);
}

} // namespace

// A curve of one level alone lies in the middle.
ChartFrame chartFrame(const Recording &recording, const Trend &trend, bool isBit)
{
    constexpr double kRoom = 0.08;
    constexpr double kFlatRoom = 0.09;
    const double least = isBit ? std::min(trend.least, 0.0) : trend.least;
    const double most = isBit ? std::max(trend.most, 1.0) : trend.most;
    const double size = std::abs(least);
    const double room = most > least ? (most - least) * kRoom : size > 0 ? size * kFlatRoom : kFlatRoom * 10;
    return {recording.begin, endOf(recording), least - room, most + room, kWidth, kHeight, kMargin};
}

ChartFrame countFrame(const Recording &recording, int most)
{
    constexpr double kRoom = 1.1;
    return {recording.begin, endOf(recording), 0, most * kRoom, kWidth, kHeight, kMargin};
}

double xOf(qint64 time, const ChartFrame &frame)
{
    return frame.margin +
           double(time - frame.begin) / double(frame.end - frame.begin) * (frame.width - 2 * frame.margin);
}

double yOf(double value, const ChartFrame &frame)
{
    return (frame.top - value) / (frame.top - frame.bottom) * frame.height;
}

QString trendPath(const Samples &samples, const ChartFrame &frame)
{
    QString path;
    QString level; // empty in a gap
    for (const RecordedSample &sample : drawn(samples, frame)) {
        const QString x = coordinate(xOf(sample.time, frame));
        const QString y = sample.isGap ? QString() : coordinate(yOf(sample.value, frame));
        if (level.isEmpty() && !y.isEmpty())
            path += 'M' + x + ' ' + y;
        else if (level != y)
            path += 'H' + x + (y.isEmpty() ? y : 'V' + y);
        level = y;
    }
    return level.isEmpty() ? path : path + 'H' + coordinate(xOf(frame.end, frame));
}

QString gapPath(const Samples &samples, const ChartFrame &frame)
{
    QString path;
    std::optional<double> left; // of the gap that is open
    for (const RecordedSample &sample : drawn(samples, frame)) {
        const double x = xOf(sample.time, frame);
        if (left && !sample.isGap)
            path += area(*left, x, 0, frame.height);
        left = sample.isGap ? left.value_or(x) : std::optional<double>();
    }
    return left ? path + area(*left, xOf(frame.end, frame), 0, frame.height) : path;
}

QString barPath(const std::vector<int> &counts, const ChartFrame &frame)
{
    constexpr double kFilled = 0.8; // of the room of each
    const double width = double(frame.width - 2 * frame.margin) / double(counts.size());
    QString path;
    double left = frame.margin;
    for (const int count : counts) {
        if (count > 0)
            path += area(left, left + width * kFilled, yOf(count, frame), frame.height);
        left += width;
    }
    return path;
}

} // namespace host
