// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/output/progress.h"

#include "common/terminal_text.h"
#include "host/base/colour.h"
#include "host/base/filled.h"
#include "host/base/messages.h"
#include "host/text/number_text.h"

#include <algorithm>
#include <iostream>

#include <sys/ioctl.h>
#include <unistd.h>

namespace host {

namespace {

// Milliseconds between two views.
constexpr qint64 kInPlaceInterval = 100;
constexpr qint64 kLineInterval = 5000;

// Milliseconds before which a rate would be a guess.
constexpr qint64 kFirstRate = 1000;

const char kEraseLine[] = "\r\x1b[K";

// Cuts a line to the terminal's width, because one that wraps could not be drawn over.
QString fitted(const QString &text)
{
    winsize size = {};
    const bool isKnown = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
    return isKnown ? text.left(size.ws_col - 1) : text;
}

QString rateText(double perSecond, const QString &unit)
{
    return filled("%1 %2/s", QString::number(perSecond, 'f', perSecond < 10 ? 1 : 0), unit);
}

double rateOf(const Work &work, qint64 milliseconds)
{
    return 1000.0 * double(work.done - work.doneBefore) / double(std::max<qint64>(milliseconds, 1));
}

} // namespace

QString progressText(const Work &work, qint64 milliseconds)
{
    QString text = filled("%1: %2 of %3 %4, %5 %", work.name, work.done, work.total, work.unit,
                          work.total > 0 ? 100 * work.done / work.total : 100);
    const double rate = rateOf(work, milliseconds);
    if (rate <= 0 || milliseconds < kFirstRate)
        return text;
    const qint64 left = qint64(1000.0 * double(work.total - work.done) / rate);
    return text + ", " + rateText(rate, work.unit) + ", " + durationText(left) + " left";
}

QString summaryText(const Work &work, qint64 milliseconds)
{
    return filled("%1: %2 %3 in %4 s, %5", work.name, work.done - work.doneBefore, work.unit,
                  QString::number(double(milliseconds) / 1000, 'f', 1),
                  rateText(rateOf(work, milliseconds), work.unit));
}

Progress::Progress(const OutputOptions &options, const Work &work_) : style(styleFor(options)), work(work_)
{
    sinceStart.start();
    sinceShown.start();
    if (style == Style::InPlace)
        show();
}

Progress::~Progress()
{
    clear();
}

Progress::Style Progress::styleFor(const OutputOptions &options)
{
    if (options.quiet)
        return Style::None;
    return takesControls(STDERR_FILENO) && !options.verbose ? Style::InPlace : Style::Lines;
}

void Progress::advance(qint64 amount)
{
    work.done += amount;
    const qint64 interval = style == Style::InPlace ? kInPlaceInterval : kLineInterval;
    if (style != Style::None && sinceShown.hasExpired(interval))
        show();
}

void Progress::show()
{
    const QString text = progressText(work, sinceStart.elapsed());
    sinceShown.restart();
    if (style == Style::Lines) {
        reportNote(text);
        return;
    }
    std::cerr << kEraseLine << qUtf8Printable(fitted(common::visibleText(text))) << std::flush;
    isShown = true;
}

void Progress::clear()
{
    if (isShown)
        std::cerr << kEraseLine << std::flush;
    isShown = false;
}

void Progress::note(const QString &text)
{
    clear();
    reportNote(text);
}

void Progress::finish()
{
    note(summaryText(work, sinceStart.elapsed()));
}

} // namespace host
