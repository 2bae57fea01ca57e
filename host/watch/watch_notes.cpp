// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/watch/watch_notes.h"

#include "host/base/report.h"

namespace host {

WatchNotes::WatchNotes(bool all_) : all(all_) {}

void WatchNotes::answered(const Watch & /*watch*/, const WatchedItem &item, const Reading & /*reading*/,
                          WatchNews news)
{
    if (news == WatchNews::Recovered)
        reportNote(item.tag.label() + ": answers again");
}

void WatchNotes::failed(const Watch & /*watch*/, const WatchedItem &item, const Failure &failure, bool isNews)
{
    if (all || isNews)
        reportFailure(item.tag.label(), failure);
}

void WatchNotes::tell(const Watch & /*watch*/, const QString &text)
{
    reportNote(text);
}

} // namespace host
