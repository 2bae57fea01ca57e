// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/watch/plot.h"

#include "host/text/fitted_text.h"
#include "host/watch/axis.h"

#include <QLocale>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <optional>
#include <utility>

namespace host {

namespace {

constexpr size_t kMostSamples = 1000;
constexpr int kLeastPlotRows = 2;
constexpr int kRowsForAxisLine = 12;
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

// The times and values that the canvas spans.
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
    bool isWhole; // no value has a fraction
};

bool isWhole(double value)
{
    return std::floor(value) == value;
}

std::optional<Range> rangeOf(const Samples &samples, double begin)
{
    std::optional<Range> range;
    for (size_t i = 0; i < samples.size(); ++i) {
        const PlotSample &sample = samples.at(i);
        const bool isOver = sample.time < begin && i + 1 < samples.size() && samples.at(i + 1).time < begin;
        if (sample.isGap || isOver)
            continue;
        const bool held = sample.time < begin;
        const double low = held ? sample.last : sample.low;
        const double high = held ? sample.last : sample.high;
        const Range own = {low, high, isWhole(low) && isWhole(high) && isWhole(sample.last)};
        range = range ? Range{std::min(range->low, own.low), std::max(range->high, own.high),
                              range->isWhole && own.isWhole}
                      : own;
    }
    return range;
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
    int scaleWidth; // of the numbers on the left
    PlotGlyphs glyphs;

    // The room that is left for the curves.
    int plotColumns() const { return std::max(1, columns - scaleWidth - 2); }

    QString glyph(char ascii, const char *utf8) const
    {
        return glyphs == PlotGlyphs::Braille ? QString::fromUtf8(utf8) : QString(QChar(ascii));
    }
    QString wall() const { return glyph('|', "\u2502"); }
};

constexpr int kLeastScaleWidth = 10;
constexpr int kColumnsPerTime = 12; // a time along the axis, and the room beside it

// A curve with its room: a line for the title, and others to draw in.
struct Panel
{
    const PlotCurve &curve;
    std::optional<Range> range;
    ValueAxis axis;
    int rows;
};

Panel panelFor(const PlotCurve &curve, double begin, int rows)
{
    const std::optional<Range> range = rangeOf(curve.samples, begin);
    if (!range)
        return {curve, range, {0, 0, {}}, rows};
    const int mostMarks = std::max(2, rows * 2 / 3);
    const ValueAxis axis = curve.isBit ? valueAxis(0, 1, true, 2)
                                       : valueAxis(range->low, range->high, range->isWhole, mostMarks);
    return {curve, range, axis, rows};
}

int scaleWidthFor(const std::vector<Panel> &panels)
{
    int width = kLeastScaleWidth;
    for (const Panel &panel : panels)
        for (const AxisMark &mark : panel.axis.marks)
            width = std::max(width, int(mark.text.size()));
    return width;
}

QStringList panelPlot(const Panel &panel, const Sheet &sheet)
{
    const int rows = panel.rows - 1;
    const Scale scale = {sheet.now - sheet.span, sheet.now, panel.axis.bottom, panel.axis.top};
    Canvas canvas(sheet.plotColumns(), rows, sheet.glyphs);
    if (panel.range)
        draw(canvas, panel.curve.samples, scale);
    std::map<int, QString> marks; // by their rows
    for (const AxisMark &mark : panel.axis.marks)
        marks[scale.y(mark.place, canvas) * rows / canvas.height()] = mark.text;
    QStringList lines;
    for (int row = 0; row < rows; ++row)
        lines << trimmedEnd(marks[row].rightJustified(sheet.scaleWidth) + ' ' + sheet.wall() +
                            canvas.line(row));
    return lines;
}

QString exactText(double number)
{
    return QString::number(number, 'g', QLocale::FloatingPointShortest);
}

// The label gives way to the value, and the range to both.
QString panelTitle(const Panel &panel, int columns)
{
    const QString value = shortened(panel.curve.value, columns);
    const QString plain = panel.curve.label + "  " + value;
    const QString range = panel.range && panel.range->high > panel.range->low
                              ? "   " + exactText(panel.range->low) + " to " + exactText(panel.range->high)
                              : QString();
    const int room = columns - int(value.size()) - 2;
    const QString least = room > 0 ? withoutMiddle(panel.curve.label, room) + "  " + value : value;
    return trimmedEnd(firstThatFits({plain + range, plain, least}, columns));
}

// Where a time lies along the axis.
int columnOf(double time, const Sheet &sheet)
{
    const int last = sheet.plotColumns() - 1;
    return std::clamp(int(std::lround((1 - time / sheet.span) * last)), 0, last);
}

QStringList timeAxis(const Sheet &sheet, bool hasLine)
{
    const int columns = sheet.plotColumns();
    const QString margin(sheet.scaleWidth + 1, ' ');
    QString texts(columns, ' ');
    QString line = sheet.glyph('-', "\u2500").repeated(columns);
    int free = columns + 1; // in front of what stands there already
    for (const AxisMark &mark : timeMarks(sheet.span, std::max(1, columns / kColumnsPerTime))) {
        const int column = columnOf(mark.place, sheet);
        const auto size = int(mark.text.size());
        const int begin = std::clamp(column - size / 2, 0, std::max(0, columns - size));
        if (begin + size >= free)
            continue;
        texts.replace(begin, size, mark.text);
        line.replace(column, 1, sheet.glyph('+', "\u252c"));
        free = begin;
    }
    QStringList lines;
    if (hasLine)
        lines << margin + sheet.glyph('+', "\u2514") + line;
    return lines << trimmedEnd(margin + ' ' + texts);
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

// Samples of one slot become one. Of values and a gap in the same slot the later ones stand behind.
void PlotHistory::put(const PlotSample &sample)
{
    PlotSample merged = sample;
    for (size_t back = 1; back <= 2 && back <= kept.size(); ++back) {
        const auto found = kept.end() - ptrdiff_t(back);
        if (slotOf(found->time) != slotOf(sample.time) || found->isGap != sample.isGap)
            continue;
        merged.time = back == 1 ? found->time : sample.time;
        merged.low = std::min(found->low, sample.low);
        merged.high = std::max(found->high, sample.high);
        kept.erase(found);
        break;
    }
    kept.push_back(merged);
    while (kept.size() > 1 && kept.at(1).time < sample.time - span)
        kept.pop_front();
    if (kept.size() > kMostSamples)
        widenSlots();
}

void PlotHistory::widenSlots()
{
    slotWidth *= 2;
    const std::deque<PlotSample> narrow = std::exchange(kept, {});
    for (const PlotSample &sample : narrow)
        put(sample);
}

QStringList plotLines(const std::vector<PlotCurve> &curves, double now, double span, int columns, int rows,
                      PlotGlyphs glyphs)
{
    const int perCurve = 1 + kLeastPlotRows;
    const auto count = int(curves.size());
    const bool hasAxisLine = rows >= kRowsForAxisLine;
    const int ends = hasAxisLine ? 2 : 1;
    const bool haveAllRoom = rows - ends >= count * perCurve;
    const int room = rows - ends - (haveAllRoom ? 0 : 1);
    const int shown = std::min(count, room / perCurve);
    std::vector<Panel> panels;
    panels.reserve(size_t(std::max(shown, 0)));
    for (int i = 0; i < shown; ++i)
        panels.push_back(panelFor(curves.at(size_t(i)), now - span, room / shown));
    const Sheet sheet = {now, span, columns, scaleWidthFor(panels), glyphs};
    if (panels.empty() || sheet.plotColumns() < kLeastPlotColumns)
        return QStringList(QString("no room to draw").left(columns)).mid(0, std::max(rows, 0));
    QStringList lines;
    for (const Panel &panel : panels)
        lines << panelTitle(panel, columns) << panelPlot(panel, sheet);
    lines << timeAxis(sheet, hasAxisLine);
    if (shown < count)
        lines << QString("... and %1 more").arg(count - shown).left(columns);
    return lines;
}

} // namespace host
