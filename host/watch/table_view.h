// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Watched items as a table on the terminal, in place.
//
//   ADDRESS  VALUE        CHANGED  ATTEMPTS  ERRORS  LAST ERROR
//   VB100    17 34 51 68  *             12       0
//   T37      (300)        8 s           14       1  plc no response
//
// CHANGED is * when the last answer brought other values than the one before, otherwise how long ago that
// happened, or - when it never did. Values in parentheses are old: the last poll failed.

#ifndef HOST_WATCH_TABLE_VIEW_H
#define HOST_WATCH_TABLE_VIEW_H

#include "host/watch/terminal_screen.h"
#include "host/watch/view.h"

#include <QString>
#include <QStringList>

namespace host {

// The table's lines, cut to a screen's columns; when there are more items than rows, the last line says so.
QStringList watchTable(const Watch &watch, WatchTime now, int columns, int rows);

class TableView : public View
{
public:
    // title: the line above the table.
    explicit TableView(const QString &title);

    void answered(const Watch &watch, const WatchedItem &item, const Reading &reading,
                  WatchNews news) override;
    void failed(const Watch &watch, const WatchedItem &item, const Failure &failure, bool isNews) override;
    void idle(const Watch &watch) override;
    void tell(const Watch &watch, const QString &text) override;

private:
    void draw(const Watch &watch);

    TerminalScreen screen;
    QString title;
    QString lastMessage; // what happened last; until the next answer
};

} // namespace host

#endif
