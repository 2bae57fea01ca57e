// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/scaling.h"

#include "host/text/number_text.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

// A double keeps every decimal number of 15 digits apart from its neighbours; 17 digits keep every double
// apart.
constexpr int kSafeDigits = 15;
constexpr int kAllDigits = 17;

double unscaled(const Scaling &scaling, double shown)
{
    return (shown - scaling.offset) / scaling.scale;
}

double toSafeDigits(double number)
{
    return QString::number(number, 'g', kSafeDigits).toDouble();
}

template <typename Whole> bool isSameRaw(const Scaling &scaling, double shown, Whole raw)
{
    return std::round(unscaled(scaling, shown)) == double(raw);
}

bool isSameRaw(const Scaling &scaling, double shown, float raw)
{
    return float(unscaled(scaling, shown)) == raw;
}

// The last digits of a double are lost in the arithmetic.
bool isSameRaw(const Scaling &scaling, double shown, double raw)
{
    return toSafeDigits(unscaled(scaling, shown)) == toSafeDigits(raw);
}

// Digits of a sum cannot be trusted beyond those of its larger part: a small difference of two large numbers
// is mostly what both were rounded by.
int trustedPlaces(double product, double offset, int digits)
{
    const double larger = std::max(std::abs(product), std::abs(offset));
    return larger > 0 ? digits - 1 - int(std::floor(std::log10(larger))) : digits;
}

// The number, written in decimals, that takes part in the sum: of a float the shortest that names it, 0.1 and
// not 0.100000001490116.
template <typename Number> double decimal(Number raw)
{
    return double(raw);
}

double decimal(float raw)
{
    return shortestText(raw).toDouble();
}

// Of the texts of growing length the first from which writing gets the raw number back. With a huge offset
// none does; then it is the longest.
template <typename Number> QString scaledNumber(const Scaling &scaling, Number raw, int rawPlaces)
{
    const double product = decimal(raw) * scaling.scale;
    const double shown = product + scaling.offset;
    const int places = std::max(rawPlaces + decimalPlaces(scaling.scale), decimalPlaces(scaling.offset));
    for (int digits = kSafeDigits;; ++digits) {
        const int kept = std::clamp(trustedPlaces(product, scaling.offset, digits), 0, places);
        const double rounded = QString::number(shown, 'f', kept).toDouble();
        QString text = QString::number(rounded, 'g', digits);
        if (digits == kAllDigits || isSameRaw(scaling, text.toDouble(), raw))
            return text;
    }
}

template <typename Number> QString scaledFloat(const Scaling &scaling, Number raw)
{
    const double shown = double(raw) * scaling.scale + scaling.offset;
    return std::isfinite(shown) ? scaledNumber(scaling, raw, decimalPlaces(raw)) : QString::number(shown);
}

} // namespace

QString scaledText(const Scaling &scaling, qint64 raw)
{
    return scaledNumber(scaling, raw, 0);
}

QString scaledText(const Scaling &scaling, quint64 raw)
{
    return scaledNumber(scaling, raw, 0);
}

QString scaledText(const Scaling &scaling, float raw)
{
    return scaledFloat(scaling, raw);
}

QString scaledText(const Scaling &scaling, double raw)
{
    return scaledFloat(scaling, raw);
}

QString unscaledWholeText(const Scaling &scaling, double shown)
{
    const double withoutSignOfZero = std::round(unscaled(scaling, shown)) + 0.0;
    return QString::number(withoutSignOfZero, 'f', 0);
}

QString unscaledFloatText(const Scaling &scaling, double shown)
{
    return QString::number(unscaled(scaling, shown), 'g', kSafeDigits);
}

} // namespace host
