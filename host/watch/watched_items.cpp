// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/watch/watched_items.h"

#include "host/base/filled.h"
#include "host/text/number_text.h"

#include <QString>

#include <chrono>
#include <cmath>
#include <utility>

namespace host {

namespace {

double millisecondsOf(WatchDuration time)
{
    return std::chrono::duration<double, std::milli>(time).count();
}

QString wholeMilliseconds(WatchDuration time)
{
    return filled("%1 ms", std::llround(millisecondsOf(time)));
}

// With tenths as long as they say more than the times are worth.
QString shortMilliseconds(WatchDuration time)
{
    const double milliseconds = millisecondsOf(time);
    return QString::number(milliseconds, 'f', milliseconds < 9.95 ? 1 : 0);
}

QString firstLine(const Watch &watch)
{
    QString polls = counted(watch.polls(), "poll");
    if (watch.isSimulated)
        polls += " of a simulated controller";
    if (watch.answerTimes.count() == 0)
        return polls + ", no answers";
    return QString("%1, %2: %3 on average, %4 at most")
        .arg(polls, counted(watch.answerTimes.count(), "answer"), wholeMilliseconds(watch.answerTimes.mean()),
             wholeMilliseconds(watch.answerTimes.longest()));
}

// Three digits, and all of those before the point.
QString rateText(qint64 count, WatchDuration time)
{
    const double rate = double(count) / std::chrono::duration<double>(time).count();
    return rate < 100 ? QString::number(rate, 'g', 3) : QString::number(rate, 'f', 0);
}

QString rateLine(const Watch &watch)
{
    return QString("%1, %2; %3 requests and %4 values per second")
        .arg(counted(watch.requests, "request"), counted(watch.values, "value"),
             rateText(watch.requests, watch.time), rateText(watch.values, watch.time));
}

QString percentileLine(const Watch &watch)
{
    const AnswerTimes &times = watch.answerTimes;
    QString line = QString("answer time: p50 %1, p90 %2, p99 %3, longest %4 ms")
                       .arg(shortMilliseconds(times.percentile(50)), shortMilliseconds(times.percentile(90)),
                            shortMilliseconds(times.percentile(99)), shortMilliseconds(times.longest()));
    if (watch.expectedTime == WatchDuration::zero()) // raw addresses have no plan
        return line;
    return line +
           QString("; the plan expected %1 ms").arg(shortMilliseconds(watch.expectedTime / times.count()));
}

// Says of one group only what is unusual.
QStringList latenessLines(const Watch &watch)
{
    QStringList lines;
    const bool isOnlyGroup = watch.groups.size() == 1;
    for (const WatchGroup &group : watch.groups) {
        const QString late = filled("by %1 at most", wholeMilliseconds(group.longestLateness));
        if (isOnlyGroup && group.latePolls > 0)
            lines << counted(group.latePolls, "poll") + " took longer than the interval, " + late;
        if (!isOnlyGroup)
            lines << filled("every %1 ms: %2, %3", group.interval.count(), counted(group.polls, "poll"),
                            group.latePolls == 0 ? QString("none late")
                                                 : filled("%1 late, %2", group.latePolls, late));
    }
    return lines;
}

} // namespace

WatchedItem::WatchedItem(const Tag &tag_) : tag(tag_) {}

WatchNews WatchedItem::answered(const QStringList &newValues, WatchTime now)
{
    const bool isFirst = values.isEmpty();
    const bool hasRecovered = std::exchange(isFailing, false);
    const bool hasChanged = !isFirst && values != newValues;
    values = newValues;
    if (hasChanged)
        changedAt = now;
    if (isFirst || hasChanged)
        return WatchNews::Changed;
    return hasRecovered ? WatchNews::Recovered : WatchNews::None;
}

bool WatchedItem::failed(const QString &error)
{
    const bool isNews = !isFailing || lastError != error;
    isFailing = true;
    lastError = error;
    ++errors;
    return isNews;
}

int Watch::polls() const
{
    int all = 0;
    for (const WatchGroup &group : groups)
        all += group.polls;
    return all;
}

Watch::Watch(const std::vector<Tag> &watched)
{
    for (const Tag &tag : watched)
        items.emplace_back(tag);
}

QStringList watchSummary(const Watch &watch)
{
    QStringList lines = {firstLine(watch)};
    if (watch.requests > 0 && watch.time > WatchDuration())
        lines << rateLine(watch);
    if (watch.answerTimes.count() > 0)
        lines << percentileLine(watch);
    for (const WatchedItem &item : watch.items)
        lines << item.tag.label() + ": " + counted(item.attempts, "attempt") + ", " +
                     counted(item.errors, "error");
    for (auto cause = watch.errors.begin(); cause != watch.errors.end(); ++cause)
        lines << counted(cause.value(), "time") + ": " + cause.key();
    lines << latenessLines(watch);
    if (watch.returns)
        lines << "the port was lost and came back " + counted(watch.returns, "time");
    return lines;
}

} // namespace host
