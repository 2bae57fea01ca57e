// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Watched items as a table on the terminal, in place.
//
//   ADDRESS  VALUE        CHANGED     ATTEMPTS  ERRORS  LAST ERROR
//   VB100    17 34 51 68  3 s ago           12       0
//   T37      (300)        never             14       1  plc no response
//
// CHANGED is how long ago an answer brought other values than the one before. Values in parentheses are old:
// the last poll failed.
//
// A screen that is too narrow shows the error below its item, and fewer values of an array in a line; then
// ATTEMPTS, ERRORS and CHANGED are left out, in this order. Values are shortened last, and never cut.

#ifndef HOST_WATCH_TABLE_VIEW_H
#define HOST_WATCH_TABLE_VIEW_H

#include "host/watch/terminal_screen.h"
#include "host/watch/view.h"

#include <QElapsedTimer>
#include <QString>
#include <QStringList>

namespace host {

// The table's lines for a screen of this size. Items that have no row are counted in the last line, values
// that have none behind the others.
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

    // Leaves the whole table among what the terminal shows.
    void leave(const Watch &watch) override;

private:
    void draw(const Watch &watch);

    TerminalScreen screen;
    QString title;
    QString lastMessage;  // what happened last; until the next answer
    bool hasNews = false; // that the screen does not show yet
    QElapsedTimer sinceDrawn;
};

} // namespace host

#endif
