// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A file that grows by a record at a time and is never replaced: whatever ends the program, at most the
// record under way is missing.
//
// A file that is there already goes on, when it begins as this one would; a last record that was cut is taken
// out of it first. With a rotation the file moves out of the way when it is full, to the next number that no
// file has: log.csv to log.1.csv, then to log.2.csv. Each of them begins with the head.

#ifndef HOST_OUTPUT_LINE_FILE_H
#define HOST_OUTPUT_LINE_FILE_H

#include "host/base/failure.h"
#include "host/output/sink.h"

#include <QByteArray>
#include <QDate>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QString>

#include <optional>

namespace host {

// When a file of records moves out of the way, and how many that did so stay.
struct Rotation
{
    std::optional<qint64> size; // in bytes: a record that would make the file larger begins the next one
    bool daily = false;         // the first record of a day, by local time, begins the next one
    std::optional<int> keep;    // all unless given
};

// Reads what a user asks for: "10M", "500k" or "day". Fails on anything else.
Rotation parseRotation(const QString &text);

// What the records of a file look like.
struct LineStyle
{
    QByteArray head;              // the line in front of the records; may be empty
    QRegularExpression beginning; // of the first line
    bool hasQuotes;               // a line end between quotes ends no record
};

class LineFile : public OutputSink
{
public:
    // Fails when the file is there and no such one, is written by another process, or cannot be written.
    LineFile(const QString &name, const LineStyle &style, const Rotation &rotation);

    // A new file that got no record goes, unless it was to be so.
    ~LineFile() override;

    // The head is written by itself, to every file.
    void putHead(const QByteArray & /*head*/) override {}

    // Appends a whole record.
    void put(const QByteArray &record) override;

    // Makes sure that all is on the disk.
    void commit() override;

private:
    void open();
    void goOn();
    void checkBeginning(qint64 wholeSize);
    void checkRest(qint64 wholeSize);
    qint64 wholeSize();
    bool isDue(const QByteArray &record) const;
    void rotate();
    void dropOldest() const;
    void append(const QByteArray &text);
    void sync();

    QString name;
    LineStyle style;
    Rotation rotation;
    QFile file;
    qint64 size = 0;
    bool isWanted = false; // it was there before, has had a record, or is the end of a recording
    QDate lastDay;         // on which something was written
    QElapsedTimer sinceSync;
};

} // namespace host

#endif
