// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/frames/trace_file.h"

#include "host/base/files.h"
#include "host/text/hex_text.h"

#include <QStringList>

namespace host {

namespace {

constexpr char kSent = '>';
constexpr char kReceived = '<';

QByteArray timeText(const QDateTime &time)
{
    return time.toUTC().toString(Qt::ISODateWithMs).toLatin1();
}

Failure unwritable(const QFile &file)
{
    return Failure(ExitCode::OutputLost, file.fileName() + " cannot be written: " + writeReason(file),
                   "check the trace file's directory, its rights and its room");
}

} // namespace

TraceFile::TraceFile(const QString &name, const QString &heading) : file(name)
{
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        throw unwritable(file);
    put("# " + heading.toUtf8());
    if (lost)
        throw Failure(*lost);
}

void TraceFile::sent(const QByteArray &frame)
{
    put(traceLine(QDateTime::currentDateTimeUtc(), kSent, frame));
}

void TraceFile::received(const QByteArray &frame)
{
    put(traceLine(QDateTime::currentDateTimeUtc(), kReceived, frame));
}

void TraceFile::heardNothing(bool isOver)
{
    comment(isOver ? "nothing more" : "silence");
}

void TraceFile::comment(const QString &text)
{
    put("# " + timeText(QDateTime::currentDateTimeUtc()) + ' ' + text.toUtf8());
}

// Each line is one write, so that it is in the file whole or not at all.
void TraceFile::put(const QByteArray &line)
{
    if (!lost && file.write(line + '\n') != line.size() + 1)
        lost = unwritable(file);
}

QByteArray traceLine(const QDateTime &time, char direction, const QByteArray &frame)
{
    return timeText(time) + ' ' + direction + ' ' + frame.toHex(' ');
}

std::optional<TraceRecord> parseTraceLine(const QByteArray &line)
{
    const QString text = utf8Text(line).simplified();
    if (text.isEmpty() || text.startsWith('#'))
        return std::nullopt;
    const QString direction = text.section(' ', 1, 1);
    if (direction != ">" && direction != "<")
        throw Failure(ExitCode::Usage, "no record of a trace",
                      "a record is a time, > or <, and bytes; hexadecimal text alone goes without --trace");
    return TraceRecord{text.section(' ', 0, 0), direction, parseHex(text.section(' ', 2))};
}

} // namespace host
