// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Curves of values over time, drawn in characters.
//
//   Boiler  61.5 °C   58.2 to 63.9
//    64 |                 .:'
//    62 |        .........:
//    60 |       .'
//    58 |......:'
//       +----+-------+-------+
//         -40 s   -20 s    now

#ifndef HOST_WATCH_PLOT_H
#define HOST_WATCH_PLOT_H

#include <QString>
#include <QStringList>

#include <cmath>
#include <deque>
#include <vector>

namespace host {

// The values of a short while, the last of which holds until the next sample.
struct PlotSample
{
    double time; // seconds
    double low;
    double high;
    double last;
    bool isGap; // nothing is known from here on
};

// The samples of the last while. However many are added, so few are kept that a screen can just show them:
// the shorter the time since the first one, the closer they lie to each other.
class PlotHistory
{
public:
    // span: how much is kept, in seconds.
    explicit PlotHistory(double span_) : span(span_) {}

    // Both add a sample; times must not go back.
    void add(double time, double value);
    void addGap(double time);

    // The samples in their order. The last one before the span begins is among them, for its value still
    // holds then.
    const std::deque<PlotSample> &samples() const { return kept; }

private:
    void put(const PlotSample &sample);
    void widenSlots();
    double slotOf(double time) const { return std::floor(time / slotWidth); }

    double span;
    double slotWidth = 0.001; // seconds
    std::deque<PlotSample> kept;
};

struct PlotCurve
{
    QString label;
    QString value; // the last one as text
    const std::deque<PlotSample> &samples;
    bool isBit = false; // its scale is 0 and 1
};

enum class PlotGlyphs { Braille, Ascii };

// The curves one below the other, and the axis of the time, which has a line of its own where there are rows
// for it; no line longer than the columns, no more lines than rows. Curves that have no room are counted in a
// line of their own. span: in seconds, more than 0.
QStringList plotLines(const std::vector<PlotCurve> &curves, double now, double span, int columns, int rows,
                      PlotGlyphs glyphs);

} // namespace host

#endif
