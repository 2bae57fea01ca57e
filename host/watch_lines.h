// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Watched items as plain lines: "TIME ADDRESS VALUES" on stdout for the first values, for every
// change and after errors; the errors on stderr.

#ifndef HOST_WATCH_LINES_H
#define HOST_WATCH_LINES_H

#include "watch_view.h"

namespace host {

class WatchLines : public WatchView
{
public:
    // all: a line for every poll, not only for news.
    explicit WatchLines(bool all);

    void answered(const Watch &watch, const WatchedItem &item, WatchNews news) override;
    void failed(const Watch &watch, const WatchedItem &item, const Failure &failure, bool isNews) override;
    void attend(const Watch &watch) override;

private:
    bool all;
};

} // namespace host

#endif
