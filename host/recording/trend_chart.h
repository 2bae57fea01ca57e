// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Draws the curve of a value, and errors over time, as paths of SVG pictures.

#ifndef HOST_RECORDING_TREND_CHART_H
#define HOST_RECORDING_TREND_CHART_H

#include "host/recording/recording.h"
#include "host/recording/samples.h"
#include "host/recording/statistics.h"

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
    int margin = 0; // free on the left and on the right
};

// The frame of a chart of these values, with room around its curve. Bits have all of both levels.
ChartFrame chartFrame(const Recording &recording, const Trend &trend, bool isBit);

// The frame of a chart that counts up to a number.
ChartFrame countFrame(const Recording &recording, int most);

double xOf(qint64 time, const ChartFrame &frame);
double yOf(double value, const ChartFrame &frame);

// The path is of steps, because a value holds until the next, the last one until the frame's end. Gaps are
// left open. Where samples are closer than the picture can show, the first, least, greatest and last of them
// stand for all. The samples must be in the order of their times.
QString trendPath(const Samples &samples, const ChartFrame &frame);

// Areas over the whole height where nothing is known of the value.
QString gapPath(const Samples &samples, const ChartFrame &frame);

// Bars side by side over all of the time.
QString barPath(const std::vector<int> &counts, const ChartFrame &frame);

} // namespace host

#endif
