// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/watch/notes_view.h"

#include "host/base/messages.h"

#include <QString>

namespace host {

NotesView::NotesView(bool all_) : all(all_) {}

void NotesView::answered(const Watch & /*watch*/, const WatchedItem &item, const Reading & /*reading*/,
                         WatchNews news)
{
    if (news == WatchNews::Recovered)
        reportNote(item.tag.label() + ": answers again");
}

void NotesView::failed(const Watch & /*watch*/, const WatchedItem &item, const Failure &failure, bool isNews)
{
    if (all || isNews)
        reportFailure(item.tag.label(), failure);
}

void NotesView::tell(const Watch & /*watch*/, const QString &text)
{
    reportNote(text);
}

} // namespace host
