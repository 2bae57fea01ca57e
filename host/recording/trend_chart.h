// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Draws the line of a trend as the path of an SVG picture.

#ifndef HOST_RECORDING_TREND_CHART_H
#define HOST_RECORDING_TREND_CHART_H

#include "host/recording/recording.h"

#include <QString>

#include <vector>

namespace host {

// What the picture shows, and how large it is in its own units.
struct ChartFrame
{
    qint64 begin;
    qint64 end;
    double bottom;
    double top;
    int width;
    int height;
};

// The frame of a chart whose scale begins and ends with round numbers.
ChartFrame chartFrame(const Recording &recording, double least, double most);

// The path is of steps, because a value holds until the next. Gaps are left open. Where samples are closer
// than the picture can show, the first, least, greatest and last of them stand for all.
QString trendPath(const std::vector<RecordedSample> &samples, const ChartFrame &frame);

} // namespace host

#endif
