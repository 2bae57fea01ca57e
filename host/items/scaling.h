// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A number of the controller, the raw one, as people see it, and back:
//
//   shown number = raw number * scale + offset

#ifndef HOST_ITEMS_SCALING_H
#define HOST_ITEMS_SCALING_H

#include <QString>

namespace host {

struct Scaling
{
    // Whether it changes a number at all.
    bool isActive() const { return scale != 1 || offset != 0; }

    // Not 0.
    double scale = 1;
    double offset = 0;
};

// The shown number with the decimal places that raw number, scale and offset have, but without zeros at the
// end: 144 * 0.1 - 10 is 4.4. Infinity and what is no number stay what they are.
//
// It is worked out with the 53 bits of a double. Of whole numbers of 64 bits beyond those the last digits are
// rounded.
QString scaledText(const Scaling &scaling, qint64 raw);
QString scaledText(const Scaling &scaling, quint64 raw);
QString scaledText(const Scaling &scaling, float raw);
QString scaledText(const Scaling &scaling, double raw);

// The raw number that is shown as this one: the nearest whole one, or one with fractions, of 15 digits.
QString unscaledWholeText(const Scaling &scaling, double shown);
QString unscaledFloatText(const Scaling &scaling, double shown);

// Whole numbers up to this one have a double of their own. Which of its neighbours a greater one is meant to
// be cannot be told any more when it was scaled.
constexpr double kLargestExactWhole = 9007199254740992.0;

} // namespace host

#endif
