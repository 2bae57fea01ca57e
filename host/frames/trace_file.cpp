// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/frames/trace_file.h"

#include "common/capture.h"
#include "host/base/files.h"
#include "host/frames/explanation.h"
#include "host/frames/wire.h"
#include "host/frames/words.h"
#include "host/text/hex_text.h"

#include <QStringList>

#include <cstdint>
#include <string>
#include <string_view>

namespace host {

namespace {

constexpr char kSent = '>';
constexpr char kReceived = '<';

const char kRoomHint[] = "check the trace file's directory, its rights and its room";

QByteArray timeText(const QDateTime &time)
{
    return time.toUTC().toString(Qt::ISODateWithMs).toLatin1();
}

// Wireshark's own dissector of what the long frames of this line carry.
constexpr char kDataDissector[] = "s7comm_cotp";

std::uint64_t microseconds(const QDateTime &time)
{
    return std::uint64_t(time.toMSecsSinceEpoch()) * 1000;
}

// What a sound long frame carries: that which stands between the addresses and the check sum.
QByteArray carried(const QByteArray &frame)
{
    const int head = kLongFrameCounted + kAddressesSize;
    return frame.mid(head, int(frame.size()) - head - kTailSize);
}

// The bytes as they passed, and what those of them that are sound frames carry.
QByteArray capturePackets(std::uint64_t time, char direction, const QByteArray &bytes)
{
    using common::CaptureDirection;
    const CaptureDirection way =
        direction == kSent ? CaptureDirection::FromMaster : CaptureDirection::ToMaster;
    std::string packets = common::captureFrame(time, way, bytes.toStdString());
    for (const QByteArray &frame : splitFrames(bytes))
        if (isLongFrame(frame) && isSoundTelegram(frame))
            packets += common::captureData(time, way, kDataDissector, carried(frame).toStdString());
    return QByteArray::fromStdString(packets);
}

} // namespace

TraceFile::TraceFile(const QString &name, const QString &heading)
    : file(name), isCapture(common::isCaptureName(name.toStdString()))
{
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        throwUnwritable(file, kRoomHint);
    put(isCapture ? captureBeginning(heading) : "# " + heading.toUtf8() + '\n');
    if (lost)
        throw Failure(*lost);
}

void TraceFile::sent(const QByteArray &frame)
{
    write(kSent, frame);
}

void TraceFile::received(const QByteArray &frame)
{
    write(kReceived, frame);
}

void TraceFile::heardNothing(bool isOver)
{
    comment(isOver ? "nothing more" : "silence");
}

void TraceFile::comment(const QString &text)
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    put(isCapture ? QByteArray::fromStdString(common::captureComment(microseconds(now), text.toStdString()))
                  : "# " + timeText(now) + ' ' + text.toUtf8() + '\n');
}

void TraceFile::write(char direction, const QByteArray &frame)
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    put(isCapture ? capturePackets(microseconds(now), direction, frame)
                  : traceLine(now, direction, frame) + '\n');
}

// Each record is one write, so that it is in the file whole or not at all.
void TraceFile::put(const QByteArray &piece)
{
    if (!lost && file.write(piece) != piece.size())
        lost = unwritable(file, kRoomHint);
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
    const int time = int(text.indexOf(' '));
    const QString direction = time < 0 ? QString() : text.mid(time + 1, 1);
    const QString rest = text.mid(time + 2);
    const bool isAlone = rest.isEmpty() || rest.startsWith(' ');
    if ((direction != ">" && direction != "<") || !isAlone)
        throw Failure(ExitCode::Usage, "no record of a trace",
                      "a record is a time, > or <, and bytes; hexadecimal text alone goes without --trace");
    return TraceRecord{text.left(time), direction, parseHex(rest)};
}

QByteArray captureBeginning(const QString &heading)
{
    return QByteArray::fromStdString(common::captureHead("s7ppi", heading.toStdString()));
}

QByteArray captureRecord(const TraceRecord &record)
{
    const QDateTime time = QDateTime::fromString(record.time, Qt::ISODateWithMs);
    if (!time.isValid() || time.toMSecsSinceEpoch() < 0)
        throw Failure(ExitCode::Usage, '"' + record.time + "\" is no time",
                      "a record begins with its time, as 2026-01-31T12:00:00.250Z");
    return capturePackets(microseconds(time), record.direction.at(0).toLatin1(), record.bytes);
}

CapturedRecords parseCapture(const QByteArray &file)
{
    CapturedRecords captured = {{}, false};
    const std::string_view bytes(file.constData(), size_t(file.size()));
    common::CaptureReader reader(bytes);
    common::CaptureReader::Frame frame = {};
    while (reader.next(frame)) {
        const QDateTime time = QDateTime::fromMSecsSinceEpoch(qint64(frame.time / 1000), Qt::UTC);
        const bool isSent = frame.direction == common::CaptureDirection::FromMaster;
        captured.records.push_back({QString::fromLatin1(timeText(time)), QString(isSent ? kSent : kReceived),
                                    QByteArray::fromStdString(frame.bytes)});
    }
    captured.isDamaged = reader.isDamaged() || !common::CaptureReader::isCapture(bytes);
    return captured;
}

} // namespace host
