// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/watch/axis.h"

#include "host/base/filled.h"
#include "host/text/number_text.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace host {

namespace {

constexpr int kSteps = 5;           // about so many between the ends of an axis
constexpr double kMostWaste = 1.25; // how much longer an axis may be to have a mark more
constexpr double kRounding = 1e-9;  // of a step, by which a quotient may miss a whole number
constexpr int kLongestPlain = 10;   // characters of a number without an exponent
constexpr int kMostDigits = 9;      // of one with an exponent
constexpr double kMinute = 60;      // seconds
constexpr double kHour = 60 * kMinute;

int exponentOf(double number)
{
    return int(std::floor(std::log10(number) + kRounding));
}

// As many digits as tell two neighbouring marks apart.
QString markText(double value, double step)
{
    const double withoutSignOfZero = value + 0.0;
    QString plain = QString::number(withoutSignOfZero, 'f', std::max(0, -exponentOf(step)));
    if (plain.size() <= kLongestPlain)
        return plain;
    const int digits = value == 0 ? 1 : exponentOf(std::abs(value)) - exponentOf(step) + 1;
    return QString::number(value, 'g', std::clamp(digits, 1, kMostDigits));
}

// Marks are as far from each other as the steps between the ends can be shared out evenly.
int stepsPerMark(int steps, int mostMarks)
{
    for (int each = 1; each < steps; ++each)
        if (steps % each == 0 && steps / each + 1 <= mostMarks)
            return each;
    return steps;
}

// Room above and below a single value.
double roomAround(double value, bool isWhole)
{
    const double part = std::abs(value) * 0.1;
    return isWhole || part == 0 ? std::max(1.0, part) : part;
}

// The axis whose ends are multiples of a step. Beyond what a double can tell apart there is nothing to be
// rounded.
ValueAxis axisOf(double low, double high, double step, int mostMarks)
{
    const double first = std::floor(low / step + kRounding);
    const double last = std::ceil(high / step - kRounding);
    if (!std::isfinite(first) || !std::isfinite(last) || last - first > 2 * kSteps || last - first < 1)
        return {low, high, {{low, QString::number(low, 'g', 5)}, {high, QString::number(high, 'g', 5)}}};
    ValueAxis axis = {first * step, last * step, {}};
    const int steps = int(last - first);
    const int each = stepsPerMark(steps, mostMarks);
    for (int i = 0; i <= steps; i += each)
        axis.marks.push_back({(first + i) * step, markText((first + i) * step, step)});
    return axis;
}

} // namespace

// Longer steps may give a mark between the ends that shorter ones have no room for.
ValueAxis valueAxis(double low, double high, bool isWhole, int mostMarks)
{
    if (high <= low) {
        const double room = roomAround(low, isWhole);
        low -= room;
        high += room;
    }
    const auto axisWith = [&](int steps) {
        const double step = roundStep((high - low) / steps);
        return axisOf(low, high, isWhole ? std::max(step, 1.0) : step, mostMarks);
    };
    const ValueAxis fine = axisWith(kSteps);
    const ValueAxis coarse = axisWith(2);
    const bool isTight = coarse.top - coarse.bottom <= kMostWaste * (fine.top - fine.bottom);
    return isTight && coarse.marks.size() > fine.marks.size() ? coarse : fine;
}

std::vector<AxisMark> timeMarks(double span, int mostMarks)
{
    constexpr double kRoundTimes[] = {
        1,       2,           5,           10,           20,           30,
        kMinute, 2 * kMinute, 5 * kMinute, 10 * kMinute, 20 * kMinute, 30 * kMinute,
        kHour,   2 * kHour,   3 * kHour,   6 * kHour};
    const auto fits = [&](double step) { return span / step <= mostMarks; };
    const auto *const found = std::find_if(std::begin(kRoundTimes), std::end(kRoundTimes), fits);
    const double step = found != std::end(kRoundTimes) ? *found : 12 * kHour;
    const double unit = step < kMinute ? 1 : step < kHour ? kMinute : kHour;
    const char *name = step < kMinute ? "s" : step < kHour ? "min" : "h";
    std::vector<AxisMark> marks = {{0, "now"}};
    for (int i = 1; i * step <= span * (1 + kRounding); ++i)
        marks.push_back({i * step, filled("-%1 %2", std::lround(i * step / unit), name)});
    return marks;
}

} // namespace host
