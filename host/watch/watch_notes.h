// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What happens to watched items, as notes on stderr.

#ifndef HOST_WATCH_WATCH_NOTES_H
#define HOST_WATCH_WATCH_NOTES_H

#include "host/watch/watch_view.h"

namespace host {

class WatchNotes : public WatchView
{
public:
    // all: every failed poll, not only news.
    explicit WatchNotes(bool all);

    void answered(const Watch &watch, const WatchedItem &item, const Reading &reading,
                  WatchNews news) override;
    void failed(const Watch &watch, const WatchedItem &item, const Failure &failure, bool isNews) override;
    void tell(const Watch &watch, const QString &text) override;

private:
    bool all;
};

} // namespace host

#endif
