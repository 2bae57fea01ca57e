// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Texts of numbers as people read them at a glance.

#ifndef HOST_TEXT_NUMBER_TEXT_H
#define HOST_TEXT_NUMBER_TEXT_H

#include "host/base/filled.h"

#include <QString>

namespace host {

// A number with what it counts: "1 byte", "4 bytes".
inline QString counted(qint64 count, const QString &what)
{
    return filled("%1 %2%3", count, what, count == 1 ? "" : "s");
}

// A whole number of up to nine digits as it is, any other number with five digits:
// 100000, 52.098, 1.2346e+12.
QString shortNumber(double number);

// The number with as few digits as still tell it apart from its neighbours: 0.1, 1.0000001, 1e+20, -0, inf,
// nan.
QString shortestText(float number);
QString shortestText(double number);

// How many digits the shortest text of the number has behind the point: 2 for 0.05, 7 for 1e-7, 0 for 20. The
// number must be finite.
int decimalPlaces(float number);
int decimalPlaces(double number);

// The next number from this one on that is 1, 2 or 5 times a power of ten. The number must be above 0.
double roundStep(double number);

// How long something is going to last, to the nearest second. The second number always has two digits, so
// that what stands behind it keeps its place while the time runs down: "8 s", "2 min 05 s", "1 h 00 min".
QString durationText(qint64 milliseconds);

// How long something lasted, in what is over of it; tenths for short times: "0.4 s", "12 s", "5 min", "5 min
// 2 s", "1 h 5 min".
QString elapsedText(qint64 milliseconds);

} // namespace host

#endif
