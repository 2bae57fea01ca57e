// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/watch/watched_items.h"

#include "host/text/number_text.h"

#include <QString>

#include <algorithm>
#include <utility>

namespace host {

namespace {

QString milliseconds(WatchDuration time)
{
    return QString("%1 ms").arg(std::chrono::duration_cast<std::chrono::milliseconds>(time).count());
}

QString firstLine(const Watch &watch)
{
    QString polls = counted(watch.polls, "poll");
    if (watch.isSimulated)
        polls += " of a simulated controller";
    if (watch.answerTimes.count() == 0)
        return polls + ", no answers";
    return QString("%1, %2: %3 on average, %4 at most")
        .arg(polls, counted(watch.answerTimes.count(), "answer"), milliseconds(watch.answerTimes.mean()),
             milliseconds(watch.answerTimes.longest()));
}

} // namespace

WatchedItem::WatchedItem(const Tag &tag_) : tag(tag_) {}

WatchNews WatchedItem::answered(const QString &newValues, WatchTime now)
{
    const bool isFirst = values.isEmpty();
    const bool hasRecovered = std::exchange(isFailing, false);
    hasJustChanged = !isFirst && values != newValues;
    values = newValues;
    if (hasJustChanged)
        changedAt = now;
    if (isFirst || hasJustChanged)
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

void AnswerTimes::add(WatchDuration time)
{
    ++answers;
    total += time;
    maximum = std::max(maximum, time);
}

WatchDuration AnswerTimes::mean() const
{
    return answers ? total / answers : WatchDuration();
}

Watch::Watch(const std::vector<Tag> &watched)
{
    for (const Tag &tag : watched)
        items.emplace_back(tag);
}

QStringList watchSummary(const Watch &watch)
{
    QStringList lines = {firstLine(watch)};
    for (const WatchedItem &item : watch.items)
        lines << item.tag.label() + ": " + counted(item.attempts, "attempt") + ", " +
                     counted(item.errors, "error");
    for (auto cause = watch.errors.begin(); cause != watch.errors.end(); ++cause)
        lines << counted(cause.value(), "time") + ": " + cause.key();
    if (watch.latePolls)
        lines << counted(watch.latePolls, "poll") + " took longer than the interval";
    if (watch.returns)
        lines << "the port was lost and came back " + counted(watch.returns, "time");
    return lines;
}

} // namespace host
