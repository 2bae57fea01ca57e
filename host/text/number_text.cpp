// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/text/number_text.h"

#include "host/base/filled.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>
#include <string_view>

namespace host {

namespace {

// Of a text like -1.25e-03 each digit behind the point is a place, and the exponent moves the point.
template <typename Number> int placesOf(Number number)
{
    char digits[32];
    const std::to_chars_result result =
        std::to_chars(digits, digits + sizeof digits, number, std::chars_format::scientific);
    const std::string_view text(digits, size_t(result.ptr - digits));
    const size_t e = text.find('e');
    const size_t point = text.find('.');
    const int behindPoint = point == std::string_view::npos ? 0 : int(e - point - 1);
    const int exponent = int(std::strtol(std::string(text.substr(e + 1)).c_str(), nullptr, 10));
    return std::max(behindPoint - exponent, 0);
}

template <typename Number> QString shortestOf(Number number)
{
    char digits[32];
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, number);
    return QString::fromLatin1(digits, int(end.ptr - digits));
}

QString twoDigits(qint64 number)
{
    return QString::number(number).rightJustified(2, '0');
}

} // namespace

QString shortNumber(double number)
{
    constexpr double kLargestWhole = 999999999;
    constexpr int kDigits = 5;
    const bool isWhole = std::abs(number) <= kLargestWhole && std::floor(number) == number;
    return isWhole ? QString::number(qint64(number)) : QString::number(number, 'g', kDigits);
}

QString shortestText(float number)
{
    return shortestOf(number);
}

QString shortestText(double number)
{
    return shortestOf(number);
}

int decimalPlaces(float number)
{
    return placesOf(number);
}

int decimalPlaces(double number)
{
    return placesOf(number);
}

double roundStep(double number)
{
    const double power = std::pow(10, std::floor(std::log10(number)));
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * power >= number)
            return factor * power;
    return 10 * power;
}

QString durationText(qint64 milliseconds)
{
    const qint64 seconds = (milliseconds + 500) / 1000;
    if (seconds < 60)
        return QString("%1 s").arg(seconds);
    if (seconds < 3600)
        return filled("%1 min %2 s", seconds / 60, twoDigits(seconds % 60));
    return filled("%1 h %2 min", seconds / 3600, twoDigits(seconds / 60 % 60));
}

QString elapsedText(qint64 milliseconds)
{
    const qint64 seconds = milliseconds / 1000;
    if (seconds < 10)
        return QString::number(double(milliseconds) / 1000, 'f', 1) + " s";
    if (seconds < 60)
        return QString("%1 s").arg(seconds);
    const qint64 minutes = seconds / 60;
    if (minutes < 60)
        return seconds % 60 ? filled("%1 min %2 s", minutes, seconds % 60) : QString("%1 min").arg(minutes);
    return filled("%1 h %2 min", minutes / 60, minutes % 60);
}

} // namespace host
