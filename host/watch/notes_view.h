// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The view that tells what happens to watched items in notes on stderr.

#ifndef HOST_WATCH_NOTES_VIEW_H
#define HOST_WATCH_NOTES_VIEW_H

#include "host/watch/view.h"

#include <QString>

namespace host {

class NotesView : public View
{
public:
    // all: every failed poll is told, not only the first of its kind.
    explicit NotesView(bool all);

    void answered(const Watch &watch, const WatchedItem &item, const Reading &reading,
                  WatchNews news) override;
    void failed(const Watch &watch, const WatchedItem &item, const Failure &failure, bool isNews) override;
    void tell(const Watch &watch, const QString &text) override;

private:
    bool all;
};

} // namespace host

#endif
