// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The numbers and times beside a picture: round ones, as people read them.

#ifndef HOST_RECORDING_AXIS_H
#define HOST_RECORDING_AXIS_H

#include <QString>

#include <vector>

namespace host {

struct AxisTick
{
    double place; // between the axis' ends: from 0 at the first to 1 at the other
    QString text;
};

// Two to six numbers from bottom to top, whole ones if so wished.
std::vector<AxisTick> numberTicks(double bottom, double top, bool isWhole);

// Up to six times, in milliseconds since 1970-01-01 UTC, round by the clocks of a place so many seconds ahead
// of UTC. A day's beginning is told by its date, where the time has several. A moment has none.
std::vector<AxisTick> timeTicks(qint64 begin, qint64 end, int offset);

} // namespace host

#endif
