// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Watched values as curves on the terminal, in place.

#ifndef HOST_WATCH_PLOT_VIEW_H
#define HOST_WATCH_PLOT_VIEW_H

#include "host/watch/plot.h"
#include "host/watch/terminal_screen.h"
#include "host/watch/view.h"

#include <QElapsedTimer>
#include <QHash>
#include <QString>
#include <QStringList>

#include <vector>

namespace host {

// The tags whose values can be drawn, of those with these names or addresses; of all without names. Fails on
// a name that nobody has, and when nothing is left to draw.
std::vector<Tag> drawableTags(const std::vector<Tag> &tags, const QStringList &names);

class PlotView : public View
{
public:
    // title: the line above the curves; span: how much they show, in seconds, when there is as much.
    PlotView(const QString &title, const std::vector<Tag> &tags, double span);

    void answered(const Watch &watch, const WatchedItem &item, const Reading &reading,
                  WatchNews news) override;
    void failed(const Watch &watch, const WatchedItem &item, const Failure &failure, bool isNews) override;
    void idle(const Watch &watch) override;
    void tell(const Watch &watch, const QString &text) override;

    // Leaves the last picture among what the terminal shows.
    void leave(const Watch &watch) override;

private:
    struct Curve
    {
        QString label;
        QString value;
        PlotHistory history;
        bool isBit;
    };

    double now() const { return double(clock.elapsed()) / 1000; }
    void drawSometimes();
    void draw();

    // The head with the curves below it, as they are now, on as many rows as the screen has.
    QStringList pictureBelow(const QStringList &head);

    TerminalScreen screen;
    QElapsedTimer clock;
    QString title;
    double span;
    PlotGlyphs glyphs;
    std::vector<Curve> curves;
    QHash<QString, int> firstCurves; // of an item, by its label, address, type and count
    QString lastMessage;             // what happened last; until the next answer
    double drawnAt = -1;
};

} // namespace host

#endif
