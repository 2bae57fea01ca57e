// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/watch/table_view.h"

#include "host/base/filled.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <chrono>

namespace host {

namespace {

constexpr int kTitleRows = 2; // the title, and a line that is mostly blank
constexpr int kHeadRows = 1;

// Columns that are kept for the error, however long the values are, and for the values, however narrow the
// terminal is.
constexpr int kErrorRoom = 24;
constexpr int kLeastValueRoom = 12;

const QStringList kHead = {"ADDRESS", "VALUE", "CHANGED", "ATTEMPTS", "ERRORS", "LAST ERROR"};
enum Column { kAddress, kValue, kChanged, kAttempts, kErrors, kLastError, kColumnCount };

bool isNumber(int column)
{
    return column == kAttempts || column == kErrors;
}

QString ageText(WatchDuration age)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(age).count();
    if (seconds < 60)
        return QString("%1 s").arg(seconds);
    return seconds < 3600 ? QString("%1 min").arg(seconds / 60) : QString("%1 h").arg(seconds / 3600);
}

QString changeText(const WatchedItem &item, WatchTime now)
{
    if (!item.changedAt)
        return "-";
    return item.hasJustChanged && !item.isFailing ? "*" : ageText(now - *item.changedAt);
}

QString shownValues(const WatchedItem &item)
{
    return item.isFailing && !item.values.isEmpty() ? '(' + item.values + ')' : item.values;
}

QStringList cells(const WatchedItem &item, WatchTime now)
{
    return {item.tag.label(),
            shownValues(item),
            changeText(item, now),
            QString::number(item.attempts),
            QString::number(item.errors),
            item.lastError};
}

QString cut(const QString &text, int width)
{
    return text.size() <= width ? text : text.left(std::max(0, width - 3)) + QString("...").left(width);
}

QList<int> columnWidths(const QList<QStringList> &lines, int columns)
{
    QList<int> widths;
    int others = kErrorRoom;
    for (int column = 0; column < kColumnCount; ++column) {
        int width = 0;
        for (const QStringList &line : lines)
            width = std::max(width, int(line.at(column).size()));
        widths << width;
        if (column != kLastError)
            others += column == kValue ? 2 : width + 2;
    }
    widths[kValue] = std::min(widths.at(kValue), std::max(kLeastValueRoom, columns - others));
    return widths;
}

QString lineText(const QStringList &line, const QList<int> &widths, int columns)
{
    QStringList texts;
    for (int column = 0; column < kColumnCount; ++column) {
        const QString text = cut(line.at(column), widths.at(column));
        texts << (isNumber(column) ? text.rightJustified(widths.at(column))
                                   : text.leftJustified(widths.at(column)));
    }
    QString joined = texts.join("  ");
    while (joined.endsWith(' '))
        joined.chop(1);
    return cut(joined, columns);
}

} // namespace

QStringList watchTable(const Watch &watch, WatchTime now, int columns, int rows)
{
    QList<QStringList> lines = {kHead};
    for (const WatchedItem &item : watch.items)
        lines << cells(item, now);
    const QList<int> widths = columnWidths(lines, columns);
    QStringList texts;
    for (const QStringList &line : lines)
        texts << lineText(line, widths, columns);
    if (texts.size() <= rows)
        return texts;
    const int hidden = int(texts.size()) - std::max(kHeadRows, rows - 1);
    texts = texts.mid(0, std::max(kHeadRows, rows - 1));
    return texts << cut(QString("... and %1 more").arg(hidden), columns);
}

TableView::TableView(const QString &title_) : title(title_) {}

void TableView::answered(const Watch &watch, const WatchedItem & /*item*/, const Reading & /*reading*/,
                         WatchNews /*news*/)
{
    lastMessage.clear();
    draw(watch);
}

void TableView::failed(const Watch &watch, const WatchedItem & /*item*/, const Failure & /*failure*/,
                       bool /*isNews*/)
{
    draw(watch);
}

void TableView::idle(const Watch &watch)
{
    if (screen.takeResize())
        draw(watch);
}

void TableView::tell(const Watch &watch, const QString &text)
{
    lastMessage = text;
    draw(watch);
}

void TableView::draw(const Watch &watch)
{
    screen.takeResize();
    const QString polls = filled("%1, poll %2", title, watch.polls() + 1);
    QStringList lines = {cut(polls, screen.columns()), cut(lastMessage, screen.columns())};
    lines << watchTable(watch, std::chrono::steady_clock::now(), screen.columns(),
                        screen.rows() - kTitleRows);
    screen.show(lines);
}

} // namespace host
