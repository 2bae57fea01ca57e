// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The trace, a file with every frame, for a look at it later: how it is written, and read back. A line is in
// the file as soon as its frame has passed, so that nothing is missing when the program is killed.
//
//   trace   := { frame | "#" COMMENT }
//   frame   := TIME " " ( ">" | "<" ) " " BYTES        > sent to the controller, < received
//   TIME    UTC, 2026-11-21T10:07:50.123Z
//   BYTES   two hexadecimal digits each, blanks between
//
// A file whose name ends with .pcapng is a capture for Wireshark instead; see common/capture.h.

#ifndef HOST_FRAMES_TRACE_FILE_H
#define HOST_FRAMES_TRACE_FILE_H

#include "host/base/failure.h"
#include "host/frames/listener.h"

#include <QByteArray>
#include <QDateTime>
#include <QFile>
#include <QString>

#include <optional>
#include <vector>

namespace host {

class TraceFile : public FrameListener
{
public:
    // Begins the file anew; heading becomes its first comment. Fails when that does not work.
    TraceFile(const QString &name, const QString &heading);

    void sent(const QByteArray &frame) override;
    void received(const QByteArray &frame) override;
    void heardNothing(bool isOver) override;

    void comment(const QString &text);

    // Why the file is not whole; nothing as long as it is.
    const std::optional<Failure> &failure() const { return lost; }

private:
    void write(char direction, const QByteArray &frame);
    void put(const QByteArray &piece);

    QFile file;
    bool isCapture;
    std::optional<Failure> lost;
};

// The line that stands in the file for a frame, without the character that ends it.
QByteArray traceLine(const QDateTime &time, char direction, const QByteArray &frame);

struct TraceRecord
{
    QString time;
    QString direction; // ">" from the master, "<" to it
    QByteArray bytes;
};

// Returns what a line holds, and nothing for a comment or an empty line. Fails on what is neither that nor a
// record.
std::optional<TraceRecord> parseTraceLine(const QByteArray &line);

// Both are pieces of a capture: what it begins with, and the packets of a record, with the record's time.
// captureRecord() fails on a time that is none.
QByteArray captureBeginning(const QString &heading);
QByteArray captureRecord(const TraceRecord &record);

// The records of a capture, and whether it is damaged behind them.
struct CapturedRecords
{
    std::vector<TraceRecord> records;
    bool isDamaged;
};
CapturedRecords parseCapture(const QByteArray &file);

} // namespace host

#endif
