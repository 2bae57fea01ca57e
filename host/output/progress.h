// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// How far something long has come, on stderr: in place on a terminal, elsewhere a line every few seconds.

#ifndef HOST_OUTPUT_PROGRESS_H
#define HOST_OUTPUT_PROGRESS_H

#include "host/base/options.h"

#include <QElapsedTimer>
#include <QString>

namespace host {

// Work that is counted in some unit.
struct Work
{
    QString name; // "VB0..VB4095"
    QString unit; // "bytes"
    qint64 total;
    qint64 done;
    qint64 doneBefore; // in an earlier run, which tells nothing of the rate
};

// The state of the work: "VB0..VB4095: 1332 of 4096 bytes, 32 %, 151 bytes/s, 18 s left". Rate and time left
// only once they can be told. milliseconds: since this run began.
QString progressText(const Work &work, qint64 milliseconds);

// What this run has done, at its end: "VB0..VB4095: 4096 bytes in 27 s, 151 bytes/s".
QString summaryText(const Work &work, qint64 milliseconds);

class Progress
{
public:
    // Shows nothing when the options say quiet, and lines when they say verbose.
    Progress(const OutputOptions &options, const Work &work);

    // Leaves the terminal's line empty.
    ~Progress();

    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    void advance(qint64 amount);

    // Takes the view off the terminal, to make room for other lines; the next advance shows it again.
    void clear();

    // Prints a note above the view.
    void note(const QString &text);

    // Sums the work up in a note, at its end.
    void finish();

private:
    enum class Style { None, InPlace, Lines };

    static Style styleFor(const OutputOptions &options);
    void show();

    Style style;
    Work work;
    QElapsedTimer sinceStart;
    QElapsedTimer sinceShown;
    bool isShown = false;
};

} // namespace host

#endif
