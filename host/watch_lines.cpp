// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "watch_lines.h"

#include "report.h"

#include <QDateTime>

namespace host {

namespace {

// Local time with its distance from UTC: 2026-11-21T10:07:50.123+01:00
QString timeText()
{
    const QDateTime now = QDateTime::currentDateTime();
    return now.toOffsetFromUtc(now.offsetFromUtc()).toString(Qt::ISODateWithMs);
}

} // namespace

WatchLines::WatchLines(bool all_) : all(all_) {}

void WatchLines::answered(const Watch & /*watch*/, const WatchedItem &item, WatchNews news)
{
    const QString address = item.item.address.text();
    if (news == WatchNews::Recovered)
        reportNote(address + ": answers again");
    if (!all && news == WatchNews::None)
        return;
    printData(timeText() + ' ' + address + ' ' + item.values);
}

void WatchLines::failed(const Watch & /*watch*/, const WatchedItem &item, const Failure &failure, bool isNews)
{
    if (all || isNews)
        reportFailure(item.item.address.text(), failure);
}

void WatchLines::attend(const Watch & /*watch*/) {}

} // namespace host
