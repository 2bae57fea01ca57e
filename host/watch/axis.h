// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Round numbers along the axes of a picture.

#ifndef HOST_WATCH_AXIS_H
#define HOST_WATCH_AXIS_H

#include <QString>

#include <vector>

namespace host {

struct AxisMark
{
    double place;
    QString text;
};

struct ValueAxis
{
    double bottom, top;
    std::vector<AxisMark> marks; // from the bottom, which has one, to the top, which has one, too
};

// The axis of values from low to high, whose ends and marks are round. isWhole: there are no fractions to be
// marked. A single value lies in the middle.
ValueAxis valueAxis(double low, double high, bool isWhole, int mostMarks);

// Round times before now in seconds: 0 "now", 20 "-20 s", 40 "-40 s" for a span of 50. mostMarks: besides
// now.
std::vector<AxisMark> timeMarks(double span, int mostMarks);

} // namespace host

#endif
