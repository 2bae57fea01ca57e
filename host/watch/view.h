// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The interface of all views in which watched items are followed.

#ifndef HOST_WATCH_VIEW_H
#define HOST_WATCH_VIEW_H

#include "host/base/failure.h"
#include "host/watch/watched_items.h"

#include <QString>
#include <QStringList>

namespace host {

class View
{
public:
    virtual ~View() = default;

    // Told after each poll of one item, that it brought values or failed, and whether that is news.
    virtual void answered(const Watch &watch, const WatchedItem &item, const Reading &reading,
                          WatchNews news) = 0;
    virtual void failed(const Watch &watch, const WatchedItem &item, const Failure &failure, bool isNews) = 0;

    // Called after every request, and often while nothing happens.
    virtual void idle(const Watch & /*watch*/) {}

    // Told what happens to all items at once: the port is lost, or found again.
    virtual void tell(const Watch & /*watch*/, const QString & /*text*/) {}

    // Told that the watching has come to its end.
    virtual void leave(const Watch & /*watch*/) {}
};

// The lines above a picture that fills the screen: its title with what the picture has to say of itself, how
// it is ended, and a message, which may take several lines. The second line is there without a message, too.
QStringList headLines(const QString &title, const QString &state, const QString &message, int columns);

// The lines above the last picture, which stays: how many polls it shows, and until when.
QStringList lastHeadLines(const QString &title, const Watch &watch, int columns);

} // namespace host

#endif
