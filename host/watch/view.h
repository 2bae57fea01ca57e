// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The interface of all views in which watched items are followed.

#ifndef HOST_WATCH_VIEW_H
#define HOST_WATCH_VIEW_H

#include "host/base/failure.h"
#include "host/watch/watched_items.h"

#include <QString>

namespace host {

class View
{
public:
    virtual ~View() = default;

    // Told after each poll of one item, that it brought values or failed, and whether that is news.
    virtual void answered(const Watch &watch, const WatchedItem &item, const Reading &reading,
                          WatchNews news) = 0;
    virtual void failed(const Watch &watch, const WatchedItem &item, const Failure &failure, bool isNews) = 0;

    // Called often while nothing happens.
    virtual void idle(const Watch & /*watch*/) {}

    // Told what happens to all items at once: the port is lost, or found again.
    virtual void tell(const Watch & /*watch*/, const QString & /*text*/) {}
};

} // namespace host

#endif
