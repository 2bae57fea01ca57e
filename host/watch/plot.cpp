// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/watch/plot.h"

#include "host/text/number_text.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace host {

namespace {

constexpr double kSlots = 1000; // of a span; samples of one slot become one
constexpr int kLeastPlotRows = 2;
constexpr int kLeastPlotColumns = 10;

// A picture in dots, several of which make one character.
class Canvas
{
public:
    Canvas(int columns_, int rows_, PlotGlyphs glyphs_)
        : glyphs(glyphs_), columns(columns_), rows(rows_), dots(size_t(width()) * size_t(height()), false)
    {
    }

    int width() const { return columns * (glyphs == PlotGlyphs::Braille ? 2 : 1); }
    int height() const { return rows * dotRows(); }

    void horizontal(int from, int to, int y);
    void vertical(int x, int from, int to);
    QString line(int row) const;

private:
    int dotRows() const { return glyphs == PlotGlyphs::Braille ? 4 : 2; }
    void set(int x, int y)
    {
        if (x >= 0 && x < width() && y >= 0 && y < height())
            dots.at(size_t(y) * size_t(width()) + size_t(x)) = true;
    }
    bool has(int x, int y) const { return dots.at(size_t(y) * size_t(width()) + size_t(x)); }
    QChar braille(int column, int row) const;
    QChar ascii(int column, int row) const;

    PlotGlyphs glyphs;
    int columns;
    int rows;
    std::vector<bool> dots;
};

void Canvas::horizontal(int from, int to, int y)
{
    for (int x = std::max(from, 0); x <= std::min(to, width() - 1); ++x)
        set(x, y);
}

void Canvas::vertical(int x, int from, int to)
{
    for (int y = std::min(from, to); y <= std::max(from, to); ++y)
        set(x, y);
}

// A braille character has two columns and four rows of dots, and in its code a bit for each of them.
QChar Canvas::braille(int column, int row) const
{
    constexpr int kBits[2][4] = {{0x01, 0x02, 0x04, 0x40}, {0x08, 0x10, 0x20, 0x80}};
    int pattern = 0;
    for (int x = 0; x < 2; ++x)
        for (int y = 0; y < 4; ++y)
            if (has(column * 2 + x, row * 4 + y))
                pattern |= kBits[x][y];
    return pattern ? QChar(0x2800 + pattern) : QChar(' ');
}

QChar Canvas::ascii(int column, int row) const
{
    const bool isUp = has(column, row * 2);
    const bool isDown = has(column, row * 2 + 1);
    return isUp ? (isDown ? ':' : '\'') : (isDown ? '.' : ' ');
}

QString Canvas::line(int row) const
{
    QString text;
    for (int column = 0; column < columns; ++column)
        text += glyphs == PlotGlyphs::Braille ? braille(column, row) : ascii(column, row);
    return text;
}

struct Scale
{
    double begin, end;  // seconds
    double bottom, top; // values

    int x(double time, const Canvas &canvas) const
    {
        const double place = (time - begin) / (end - begin) * (canvas.width() - 1);
        return int(std::lround(std::clamp(place, -1.0, double(canvas.width()))));
    }
    int y(double value, const Canvas &canvas) const
    {
        const double part = (top - value) / (top - bottom);
        const double within = std::isfinite(part) ? std::clamp(part, 0.0, 1.0) : 0;
        return int(std::lround(within * (canvas.height() - 1)));
    }
};

using Samples = std::deque<PlotSample>;

// The lowest and the highest value of a curve, from the beginning of its span on.
struct Range
{
    double low, high;
};

std::optional<Range> rangeOf(const Samples &samples, double begin)
{
    std::optional<Range> range;
    for (size_t i = 0; i < samples.size(); ++i) {
        const PlotSample &sample = samples.at(i);
        const bool isOver = sample.time < begin && i + 1 < samples.size() && samples.at(i + 1).time < begin;
        if (sample.isGap || isOver)
            continue;
        const bool held = sample.time < begin;
        const Range own = {held ? sample.last : sample.low, held ? sample.last : sample.high};
        range = range ? Range{std::min(range->low, own.low), std::max(range->high, own.high)} : own;
    }
    return range;
}

// A curve of one level alone lies in the middle.
Scale scaleFor(const Range &range, double now, double span)
{
    const double room = range.high > range.low ? 0 : std::max(1.0, std::abs(range.low) * 0.1);
    return {now - span, now, range.low - room, range.high + room};
}

void draw(Canvas &canvas, const Samples &samples, const Scale &scale)
{
    for (size_t i = 0; i < samples.size(); ++i) {
        const PlotSample &sample = samples.at(i);
        if (sample.isGap)
            continue;
        const int x = scale.x(sample.time, canvas);
        const double until = i + 1 < samples.size() ? samples.at(i + 1).time : scale.end;
        canvas.horizontal(x, scale.x(until, canvas), scale.y(sample.last, canvas));
        canvas.vertical(x, scale.y(sample.low, canvas), scale.y(sample.high, canvas));
        if (i > 0 && !samples.at(i - 1).isGap)
            canvas.vertical(x, scale.y(samples.at(i - 1).last, canvas), scale.y(sample.last, canvas));
    }
}

QString trimmedEnd(QString text)
{
    while (text.endsWith(' '))
        text.chop(1);
    return text;
}

// The time, the size and the characters that all the curves have in common.
struct Sheet
{
    double now, span;
    int columns;
    PlotGlyphs glyphs;

    QChar wall() const { return glyphs == PlotGlyphs::Braille ? QChar(0x2502) : QChar('|'); }
};

constexpr int kScaleWidth = 10;

int plotColumns(const Sheet &sheet)
{
    return std::max(1, sheet.columns - kScaleWidth - 2);
}

QStringList emptyPlot(const Sheet &sheet, int rows)
{
    QStringList lines;
    for (int row = 0; row < rows; ++row)
        lines << QString(kScaleWidth + 1, ' ') + sheet.wall();
    return lines;
}

QStringList curvePlot(const Samples &samples, const Range &range, const Sheet &sheet, int rows)
{
    const Scale scale = scaleFor(range, sheet.now, sheet.span);
    Canvas canvas(plotColumns(sheet), rows, sheet.glyphs);
    draw(canvas, samples, scale);
    QStringList lines;
    for (int row = 0; row < rows; ++row) {
        const QString mark = row == 0          ? shortNumber(scale.top)
                             : row == rows - 1 ? shortNumber(scale.bottom)
                                               : QString();
        lines << trimmedEnd(mark.right(kScaleWidth).rightJustified(kScaleWidth) + ' ' + sheet.wall() +
                            canvas.line(row));
    }
    return lines;
}

QStringList curveLines(const PlotCurve &curve, const Sheet &sheet, int rows)
{
    const std::optional<Range> range = rangeOf(curve.samples, sheet.now - sheet.span);
    QString title = curve.label + "  " + curve.value;
    if (range && range->high > range->low)
        title += "   " + shortNumber(range->low) + " to " + shortNumber(range->high);
    return QStringList(trimmedEnd(title.left(sheet.columns))) +
           (range ? curvePlot(curve.samples, *range, sheet, rows - 1) : emptyPlot(sheet, rows - 1));
}

QString spanText(double span)
{
    return span < 120 ? QString("-%1 s").arg(span) : QString("-%1 min").arg(span / 60);
}

QString timeAxis(const Sheet &sheet)
{
    const QString begin = spanText(sheet.span);
    const int room = plotColumns(sheet) - int(begin.size());
    return (QString(kScaleWidth + 2, ' ') + begin + QString("now").rightJustified(std::max(room, 4)))
        .left(sheet.columns);
}

} // namespace

void PlotHistory::add(double time, double value)
{
    put({time, value, value, value, false});
}

void PlotHistory::addGap(double time)
{
    put({time, 0, 0, 0, true});
}

void PlotHistory::put(const PlotSample &sample)
{
    const auto slot = [this](double time) { return std::floor(time / span * kSlots); };
    const bool isNewSlot = kept.empty() || slot(kept.back().time) != slot(sample.time);
    if (isNewSlot || kept.back().isGap != sample.isGap) {
        kept.push_back(sample);
    } else if (!sample.isGap) {
        kept.back().low = std::min(kept.back().low, sample.low);
        kept.back().high = std::max(kept.back().high, sample.high);
        kept.back().last = sample.last;
    }
    while (kept.size() > 1 && kept.at(1).time < sample.time - span)
        kept.pop_front();
}

QStringList plotLines(const std::vector<PlotCurve> &curves, double now, double span, int columns, int rows,
                      PlotGlyphs glyphs)
{
    const Sheet sheet = {now, span, columns, glyphs};
    const int perCurve = 1 + kLeastPlotRows;
    const auto count = int(curves.size());
    const bool haveAllRoom = rows - 1 >= count * perCurve;
    const int room = haveAllRoom ? rows - 1 : rows - 2;
    const int shown = std::min(count, room / perCurve);
    if (shown < 1 || plotColumns(sheet) < kLeastPlotColumns)
        return QStringList(QString("no room to draw").left(columns)).mid(0, std::max(rows, 0));
    QStringList lines;
    for (int i = 0; i < shown; ++i)
        lines << curveLines(curves.at(size_t(i)), sheet, room / shown);
    lines << timeAxis(sheet);
    if (shown < count)
        lines << QString("... and %1 more").arg(count - shown).left(columns);
    return lines;
}

} // namespace host
