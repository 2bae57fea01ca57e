// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/recording/axis.h"

#include "host/text/number_text.h"

#include <QDateTime>

#include <algorithm>
#include <cmath>

namespace host {

namespace {

constexpr qint64 kSecond = 1000;
constexpr qint64 kMinute = 60 * kSecond;
constexpr qint64 kHour = 60 * kMinute;
constexpr qint64 kDay = 24 * kHour;

// clang-format off
constexpr qint64 kTimeSteps[] = {
    1, 2, 5, 10, 20, 50, 100, 200, 500,
    kSecond, 2 * kSecond, 5 * kSecond, 10 * kSecond, 15 * kSecond, 20 * kSecond, 30 * kSecond,
    kMinute, 2 * kMinute, 5 * kMinute, 10 * kMinute, 15 * kMinute, 20 * kMinute, 30 * kMinute,
    kHour, 2 * kHour, 3 * kHour, 6 * kHour, 12 * kHour,
    kDay, 2 * kDay, 5 * kDay, 10 * kDay, 20 * kDay,
};
// clang-format on

constexpr qint64 kMonth = 30 * kDay; // or a day more
constexpr int kMonthSteps[] = {1, 2, 3, 6, 12, 24, 60, 120, 240, 600, 1200};

constexpr int kMostSteps = 5;
constexpr int kMostWideSteps = 3; // when the texts have seconds

// The least of the steps that is not too small; 0 when all of them are.
qint64 timeStep(qint64 span)
{
    for (const qint64 step : kTimeSteps)
        if (span / step <= (step < kMinute ? kMostWideSteps : kMostSteps))
            return step;
    return 0;
}

int monthStep(qint64 span)
{
    for (const int step : kMonthSteps)
        if (span / (step * kMonth) <= kMostSteps)
            return step;
    return 12 * int(roundStep(double(span) / double(12 * kMonth) / kMostSteps));
}

QDateTime localTime(qint64 time, int offset)
{
    return QDateTime::fromMSecsSinceEpoch(time, Qt::OffsetFromUTC, offset);
}

QString timeText(qint64 time, qint64 step, int offset, bool hasDays)
{
    const QDateTime local = localTime(time, offset);
    if (step >= kDay || (hasDays && local.time() == QTime(0, 0)))
        return local.toString("MM-dd");
    if (step >= kMinute)
        return local.toString("HH:mm");
    return local.toString(step >= kSecond ? "HH:mm:ss" : "mm:ss.zzz");
}

std::vector<AxisTick> monthTicks(qint64 begin, qint64 end, int offset)
{
    const int step = monthStep(end - begin);
    const QDate first = localTime(begin, offset).date();
    std::vector<AxisTick> ticks;
    for (QDate date(first.year(), 1, 1);; date = date.addMonths(step)) {
        const qint64 time = QDateTime(date, QTime(0, 0), Qt::OffsetFromUTC, offset).toMSecsSinceEpoch();
        if (time > end)
            return ticks;
        if (time >= begin)
            ticks.push_back({double(time - begin) / double(end - begin), date.toString("yyyy-MM")});
    }
}

// With all the digits that tell the number from its neighbours.
QString numberText(double number, double step)
{
    constexpr double kLargest = 1e9;
    constexpr int kMostDecimals = 6;
    const int decimals = std::max(0, int(std::ceil(-std::log10(step) - 1e-9)));
    if (std::abs(number) < kLargest && decimals <= kMostDecimals)
        return QString::number(number, 'f', decimals);
    const double digits = std::log10(std::max(std::abs(number), step) / step);
    return QString::number(number, 'g', std::clamp(int(digits) + 2, 2, 15));
}

} // namespace

std::vector<AxisTick> numberTicks(double bottom, double top, bool isWhole)
{
    constexpr int kSteps = 5;
    constexpr double kLeastStep = 1e-300;
    const double least = isWhole ? 1 : kLeastStep;
    const double step = roundStep(std::max((top - bottom) / kSteps, least));
    std::vector<AxisTick> ticks;
    for (int i = 0; i <= kSteps; ++i) {
        const double number = (std::ceil(bottom / step) + i) * step + 0.0; // -0 becomes 0
        if (number <= top)
            ticks.push_back({(number - bottom) / (top - bottom), numberText(number, step)});
    }
    return ticks;
}

std::vector<AxisTick> timeTicks(qint64 begin, qint64 end, int offset)
{
    if (begin >= end)
        return {};
    const auto span = double(end - begin);
    const qint64 step = timeStep(end - begin);
    if (step == 0)
        return monthTicks(begin, end, offset);
    const qint64 ahead = offset * kSecond;
    const bool hasDays = (begin + ahead) / kDay != (end + ahead) / kDay;
    std::vector<AxisTick> ticks;
    for (qint64 time = (begin + ahead + step - 1) / step * step - ahead; time <= end; time += step)
        ticks.push_back({double(time - begin) / span, timeText(time, step, offset, hasDays)});
    return ticks;
}

} // namespace host
