// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/watch/table_view.h"

#include "host/base/filled.h"
#include "host/text/fitted_text.h"

#include <QString>
#include <QStringList>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace host {

namespace {

constexpr int kHeadRows = 1;
constexpr int kGap = 2;        // columns between two cells
constexpr int kIndent = 2;     // of an error below its item
constexpr int kLeastText = 16; // of a text in quotes, for which nothing else is left out
constexpr int kAge = 10;       // the longest age of a day: a column that breathes is hard to read
constexpr qint64 kLongestTablePause = 1000; // ms from one picture to the next, for the ages

enum Column { kLabel, kValue, kChanged, kAttempts, kErrors, kLastError, kColumnCount };
const QStringList kHead = {"ADDRESS", "VALUE", "CHANGED", "ATTEMPTS", "ERRORS", "LAST ERROR"};

// What a narrow screen is without, the first first.
constexpr Column kLeftOut[] = {kAttempts, kErrors, kChanged};

bool isNumber(int column)
{
    return column == kAttempts || column == kErrors;
}

QString ageText(WatchDuration age)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(age).count();
    if (seconds < 1)
        return "just now";
    if (seconds < 60)
        return filled("%1 s ago", seconds);
    return seconds < 3600 ? filled("%1 min ago", seconds / 60) : filled("%1 h ago", seconds / 3600);
}

QString changeText(const WatchedItem &item, WatchTime now)
{
    if (item.values.isEmpty())
        return QString();
    return item.changedAt ? ageText(now - *item.changedAt) : "never";
}

QString inParentheses(const WatchedItem &item, const QString &text)
{
    return item.isFailing ? '(' + text + ')' : text;
}

// The labels and values of an item, line by line.
std::vector<ValueLine> linesOf(const WatchedItem &item, int perLine)
{
    if (item.values.isEmpty())
        return {{item.tag.label(), QString()}};
    std::vector<ValueLine> lines = valueLines(item.tag, item.values, perLine);
    for (ValueLine &line : lines)
        line.text = inParentheses(item, line.text);
    return lines;
}

// Behind the last values that have a row.
QString countMark(int hidden)
{
    return hidden > 0 ? filled(" +%1", hidden) : QString();
}

// How wide the columns would like to be with so many values of an array in a line.
struct Demand
{
    int perLine;
    int widths[kColumnCount] = {};
    int leastValue = 0;

    void take(Column column, const QString &text)
    {
        widths[column] = std::max(widths[column], int(text.size()));
    }
};

void addItem(Demand &demand, const WatchedItem &item)
{
    const std::vector<ValueLine> lines = linesOf(item, demand.perLine);
    const QString value = lines.front().text + countMark(lines.size() > 1 ? int(item.values.size()) : 0);
    const bool canLoseCharacters = isText(item.tag.item.type);
    const int least = canLoseCharacters ? std::min(kLeastText, int(value.size())) : int(value.size());
    demand.leastValue = std::max(demand.leastValue, least);
    demand.take(kValue, value);
    demand.take(kLabel, lines.front().label);
    demand.take(kLabel, lines.back().label);
    demand.take(kAttempts, QString::number(item.attempts));
    demand.take(kErrors, QString::number(item.errors));
    demand.take(kLastError, item.lastError);
}

using Items = std::vector<const WatchedItem *>;

Demand demandOf(const Items &items, int perLine)
{
    Demand demand = {perLine};
    for (int column = 0; column < kLastError; ++column)
        demand.take(Column(column), kHead.at(column));
    demand.leastValue = demand.widths[kValue];
    demand.widths[kChanged] = kAge;
    for (const WatchedItem *item : items)
        addItem(demand, *item);
    return demand;
}

struct Layout
{
    int perLine;                             // values of an array
    std::optional<int> widths[kColumnCount]; // none: the column is left out
};

// The columns with the gaps in front of them, but for label and value.
int othersWidth(const Layout &layout)
{
    int width = kGap;
    for (int column = kChanged; column < kColumnCount; ++column)
        if (layout.widths[column])
            width += kGap + *layout.widths[column];
    return width;
}

// A long name has two fifths of the screen at least, and the rest of it when nothing else needs that.
int leastLabel(const Demand &demand, int columns)
{
    return std::min(demand.widths[kLabel], columns * 2 / 5);
}

// A layout without so many of the columns that can be left out. The room that is left is the value's, then
// the label's.
Layout layoutOf(const Demand &demand, int leftOut, bool isErrorAside, int columns)
{
    Layout layout = {demand.perLine, {}};
    for (size_t i = size_t(leftOut); i < std::size(kLeftOut); ++i)
        layout.widths[kLeftOut[i]] = demand.widths[kLeftOut[i]];
    if (isErrorAside && demand.widths[kLastError] > 0)
        layout.widths[kLastError] = std::max(demand.widths[kLastError], int(kHead.at(kLastError).size()));
    const int room = columns - othersWidth(layout);
    const int value = std::clamp(room - leastLabel(demand, columns), 1, demand.widths[kValue]);
    layout.widths[kValue] = value;
    layout.widths[kLabel] = std::min(demand.widths[kLabel], std::max(1, room - value));
    return layout;
}

bool hasRoom(const Layout &layout, int leastValue, const Demand &demand, int columns)
{
    return othersWidth(layout) + leastLabel(demand, columns) + leastValue <= columns;
}

// The first layout that shortens no number; without any that of label and value alone.
Layout layoutFor(const Items &items, int columns)
{
    Demand demand = demandOf(items, kValuesPerLine);
    const Layout whole = layoutOf(demand, 0, true, columns);
    if (hasRoom(whole, demand.widths[kValue], demand, columns))
        return whole;
    // Values a line, and how many columns are left out.
    constexpr std::pair<int, int> kTries[] = {{8, 0}, {8, 1}, {8, 2}, {4, 0}, {4, 1},
                                              {4, 2}, {8, 3}, {4, 3}, {2, 3}, {1, 3}};
    for (const auto &[perLine, leftOut] : kTries) {
        if (perLine != demand.perLine)
            demand = demandOf(items, perLine);
        const Layout layout = layoutOf(demand, leftOut, false, columns);
        if (hasRoom(layout, demand.leastValue, demand, columns))
            return layout;
    }
    return layoutOf(demand, int(std::size(kLeftOut)), false, columns);
}

// What an item's error takes below it; nothing when it stands in its own column.
QStringList errorLines(const WatchedItem &item, const Layout &layout, int columns)
{
    if (layout.widths[kLastError] || item.lastError.isEmpty())
        return {};
    QStringList lines;
    for (const QString &line : wrapped("last error: " + item.lastError, columns - kIndent))
        lines << (QString(kIndent, ' ') + line).left(columns);
    return lines;
}

// As many of the lines as have a row; the last one tells of others.
QStringList firstLines(const QStringList &lines, int rows, int columns)
{
    if (rows == 0 || rows >= lines.size())
        return lines.mid(0, rows);
    return lines.mid(0, rows - 1)
           << (lines.at(rows - 1).left(std::max(0, columns - 4)) + " ...").left(columns);
}

// The text of one value in so many columns; the unit gives way before the value does.
QString fittedValue(const WatchedItem &item, int index, int columns)
{
    const int room = columns - int(inParentheses(item, QString()).size());
    const QString unit = item.tag.unit.isEmpty() ? QString() : ' ' + item.tag.unit;
    const QString beside = shortened(item.values.at(index), room - int(unit.size()));
    const bool hasUnit = !beside.isEmpty() && !beside.startsWith('#');
    const QString text = hasUnit ? beside + unit : shortened(item.values.at(index), room);
    return inParentheses(item, text).left(std::max(columns, 0));
}

QString lineText(const QStringList &cells, const Layout &layout, int columns)
{
    QStringList texts;
    for (int column = 0; column < kColumnCount; ++column) {
        if (!layout.widths[column])
            continue;
        const int width = *layout.widths[column];
        const QString text = column == kLabel ? withoutMiddle(cells.at(column), width) : cells.at(column);
        texts << (isNumber(column) ? text.rightJustified(width) : text.leftJustified(width));
    }
    QString joined = texts.join(QString(kGap, ' '));
    while (joined.endsWith(' '))
        joined.chop(1);
    return joined.left(columns);
}

// The rows that an item has.
struct Share
{
    int values = 1;
    int errors = 0;
};

QStringList valueLinesOf(const WatchedItem &item, const Layout &layout, int rows, WatchTime now, int columns)
{
    const std::vector<ValueLine> lines = linesOf(item, layout.perLine);
    const QString mark = countMark(int(item.values.size()) - rows * layout.perLine);
    QStringList texts;
    for (int row = 0; row < rows; ++row) {
        const ValueLine &line = lines.at(size_t(row));
        const QString behind = row == rows - 1 ? mark : QString();
        const int width = *layout.widths[kValue] - int(behind.size());
        const QString value = line.text.size() <= width ? line.text : fittedValue(item, row, width);
        texts << lineText(row > 0 ? QStringList({line.label, value + behind, "", "", "", ""})
                                  : QStringList({line.label, value + behind, changeText(item, now),
                                                 QString::number(item.attempts), QString::number(item.errors),
                                                 item.lastError}),
                          layout, columns);
    }
    return texts;
}

// The rows that are left when each item has one go to errors first, and then to arrays, by turns.
std::vector<Share> sharesOf(const Items &items, const Layout &layout, int columns, int rows)
{
    std::vector<Share> shares(items.size());
    int left = rows - int(items.size());
    const auto give = [&left](int wanted) {
        const int given = std::min(left, wanted);
        left -= given;
        return given;
    };
    for (size_t i = 0; i < items.size(); ++i)
        shares[i].errors = give(int(errorLines(*items[i], layout, columns).size()));
    for (bool isOver = false; left > 0 && !isOver;) {
        isOver = true;
        for (size_t i = 0; i < items.size(); ++i)
            if (shares[i].values * layout.perLine < int(items[i]->values.size())) {
                shares[i].values += give(1);
                isOver = false;
            }
    }
    return shares;
}

// As many items as have a row, and whether that is all of them.
Items itemsFor(const Watch &watch, int rows)
{
    const bool isAll = int(watch.items.size()) <= rows;
    const size_t count = isAll ? watch.items.size() : size_t(std::max(rows - 1, 0));
    Items items;
    for (size_t i = 0; i < count; ++i)
        items.push_back(&watch.items[i]);
    return items;
}

} // namespace

QStringList watchTable(const Watch &watch, WatchTime now, int columns, int rows)
{
    const Items items = itemsFor(watch, rows - kHeadRows);
    const Layout layout = layoutFor(items, columns);
    const int hidden = int(watch.items.size() - items.size());
    const std::vector<Share> shares =
        sharesOf(items, layout, columns, rows - kHeadRows - (hidden > 0 ? 1 : 0));
    QStringList lines(lineText(kHead, layout, columns));
    for (size_t i = 0; i < items.size(); ++i) {
        lines << valueLinesOf(*items[i], layout, shares[i].values, now, columns);
        lines << firstLines(errorLines(*items[i], layout, columns), shares[i].errors, columns);
    }
    return hidden > 0 ? lines << withoutMiddle(filled("... and %1 more", hidden), columns) : lines;
}

TableView::TableView(const QString &title_) : title(title_) {}

void TableView::answered(const Watch & /*watch*/, const WatchedItem & /*item*/, const Reading & /*reading*/,
                         WatchNews /*news*/)
{
    lastMessage.clear();
    hasNews = true;
}

void TableView::failed(const Watch & /*watch*/, const WatchedItem & /*item*/, const Failure & /*failure*/,
                       bool /*isNews*/)
{
    hasNews = true;
}

void TableView::idle(const Watch &watch)
{
    if (screen.takeResize() || hasNews || sinceDrawn.hasExpired(kLongestTablePause))
        draw(watch);
}

void TableView::tell(const Watch &watch, const QString &text)
{
    lastMessage = text;
    draw(watch);
}

void TableView::leave(const Watch &watch)
{
    const int columns = screen.columns();
    QStringList lines = lastHeadLines(title, watch, columns);
    lines << watchTable(watch, std::chrono::steady_clock::now(), columns, std::numeric_limits<int>::max());
    screen.leave(lines);
}

void TableView::draw(const Watch &watch)
{
    screen.takeResize();
    sinceDrawn.start();
    hasNews = false;
    QStringList lines =
        headLines(title, filled(", poll %1", watch.polls() + 1), lastMessage, screen.columns());
    lines << watchTable(watch, std::chrono::steady_clock::now(), screen.columns(),
                        screen.rows() - int(lines.size()));
    screen.show(lines);
}

} // namespace host
