// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What watch -o FILE.csv wrote, read back in one pass: every value's curve and figures, the answer times, the
// errors. It takes as much memory for a million records as for a hundred thousand.

#ifndef HOST_RECORDING_RECORDING_H
#define HOST_RECORDING_RECORDING_H

#include "host/recording/error_causes.h"
#include "host/recording/samples.h"
#include "host/recording/statistics.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <vector>

namespace host {

struct RecordedSeries
{
    QString label; // name or address, with the element's number when there are several
    QString type;
    QString unit;
    bool isNumber; // false for hex and str, which have a last text only
    QString lastText;
    int item;        // the number of the item that it belongs to
    int answers = 0; // with a value, be it a number or not
    int errors = 0;
    TrendCounter trend;
    Samples samples;
    bool isThinned = false; // there were more samples
};

// Times are milliseconds since 1970-01-01 UTC.
struct Recording
{
    qint64 begin = 0;
    qint64 end = 0;
    int offset = 0; // of the times in the file from UTC, in seconds
    QStringList ports;
    QStringList stations;
    QStringList items;                  // their labels, by their numbers
    std::vector<RecordedSeries> series; // in the order in which the items come in the file
    int answers = 0;                    // of items, each of them with all its elements
    AnswerCounter answerTimes;
    ErrorCauses errors;
    TimeCounter errorTimes;
    bool isSimulated = false; // some of it was read from the simulated controller
    int leftOut = 0;          // lines of the file: headings again, and ends of recordings that were cut
};

// Reads one recording, or several behind each other, from a file or for "-" from stdin. Fails with the place,
// "log.csv:7", of what is no such record; the last line of a recording may have been cut.
Recording readRecording(const QString &fileName);

// The same of a text that was read already.
Recording parseRecording(const QString &fileName, const QByteArray &text);

} // namespace host

#endif
