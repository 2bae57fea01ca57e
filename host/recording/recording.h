// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What watch -o FILE.csv wrote, read back: every value's samples, the answer times, the errors.

#ifndef HOST_RECORDING_RECORDING_H
#define HOST_RECORDING_RECORDING_H

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <vector>

namespace host {

// Times are milliseconds since 1970-01-01 UTC.
struct RecordedSample
{
    qint64 time;
    double value; // of no meaning in a gap
    bool isGap;   // from here on nothing is known: the item failed, or it was no number
};

struct RecordedSeries
{
    QString label; // name or address, with the element's number when there are several
    QString type;
    QString unit;
    bool isNumber; // false for hex and str, which have a last text only
    QString lastText;
    std::vector<RecordedSample> samples;
};

struct RecordedError
{
    QString cause;
    int count;
    QStringList labels; // of the items that it happened to
};

struct Recording
{
    qint64 begin = 0;
    qint64 end = 0;
    int offset = 0; // of the times in the file from UTC, in seconds
    std::vector<RecordedSeries> series;
    std::vector<double> answerTimes; // milliseconds
    QList<RecordedError> errors;
    int errorCount = 0;
    bool isSimulated = false; // some of it was read from the simulated controller
    int leftOut = 0;          // lines of the file: headings again, and ends of recordings that were cut
};

// Reads one recording, or several behind each other, from a file or for "-" from stdin. Fails with the place,
// "log.csv:7", of what is no such record; the last line of a recording may have been cut. A file of more than
// 256 MiB is refused.
Recording readRecording(const QString &fileName);

// The same of a text that was read already.
Recording parseRecording(const QString &fileName, const QByteArray &text);

} // namespace host

#endif
