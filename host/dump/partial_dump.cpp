// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/dump/partial_dump.h"

#include "host/base/files.h"
#include "host/base/filled.h"
#include "host/base/input_file.h"
#include "host/base/line_reader.h"
#include "host/items/memory_range.h"

#include <QByteArray>
#include <QFileInfo>
#include <QString>

namespace host {

namespace {

const char kRoomHint[] = "check the directory, its rights and its room";
const char kRestartHint[] = "--restart begins anew and forgets it; or name another file with -o";
const QByteArray kPortComment = "# port ";

QString dumpName(const Item &range, int station, const QString &port)
{
    const QString name = filled("%1 of station %2", rangeText(range), station);
    return port.isEmpty() ? name : name + " on " + port;
}

// The port that the comment line names; empty when there is no such line.
QString portOf(const QByteArray &text)
{
    LineReader lines(QString(), text);
    while (lines.next())
        if (lines.line().startsWith(kPortComment))
            return QString::fromUtf8(lines.line().mid(kPortComment.size()));
    return QString();
}

} // namespace

PartialDump::PartialDump(const QString &name, const DumpSource &source, bool restart)
    : file(name), port(source.port.simplified()), read{source.range, source.station, {}}
{
    if (QFileInfo::exists(name) && !QFileInfo(name).isFile())
        throw Failure(ExitCode::Usage, name + " is no file", "remove it, or name another file with -o");
    if (!file.open(QIODevice::ReadWrite))
        throwUnwritable(file, kRoomHint);
    lock();
    if (file.size() > 0 && !restart)
        resume();
    writeAnew();
}

// A file that was removed between opening and locking belonged to another process up to then.
void PartialDump::lock()
{
    if (!lockForWriting(file))
        throw Failure(ExitCode::OutputLost, name() + " is being written by another s7ppi",
                      "wait for its end, or name another file with -o");
}

// Takes over what the file holds, but for a last line that was not finished: its bytes are read again.
void PartialDump::resume()
{
    const QByteArray text = file.read(kLargestDump + 1);
    if (text.size() > kLargestDump)
        throw Failure(ExitCode::Usage, name() + " is too large: it has more than " + limitText(kLargestDump),
                      kRestartHint);
    try {
        int wholeSize = 0;
        const Dump found = parsePartialDump(text, name(), wholeSize);
        checkSame(found, portOf(text.left(wholeSize)));
        read.data = found.data.left(read.range.size());
    } catch (const Failure &failure) {
        throw Failure(failure.code(), failure.text(), kRestartHint);
    }
    earlier = QFileInfo(file).lastModified();
}

void PartialDump::checkSame(const Dump &found, const QString &foundPort) const
{
    const bool isSamePort = foundPort.isEmpty() || foundPort == port;
    const bool isSamePlace = found.range.address.text() == read.range.address.text();
    if (!isSamePort || !isSamePlace || found.station != read.station)
        throw Failure(ExitCode::Usage,
                      name() + " is a part of another dump, " +
                          dumpName(found.range, found.station, foundPort),
                      kRestartHint);
}

// Writes the file from its beginning on. Unless the range is another these are the same bytes in the same
// place, so that nothing is lost when a power cut comes in between.
void PartialDump::writeAnew()
{
    saved = int(read.data.size());
    if (!file.seek(0))
        throwUnwritable(file, kRoomHint);
    write(dumpHead(read.range, read.station) + kPortComment + port.toUtf8() + '\n' +
          dumpLines(read.range, 0, read.data));
    if (!file.resize(file.pos()))
        throwUnwritable(file, kRoomHint);
}

void PartialDump::append(const QByteArray &data)
{
    read.data += data;
    const int size = int(read.data.size());
    const int wholeLines = size - (size - saved) % kDumpLineSize;
    if (wholeLines > saved)
        write(dumpLines(read.range, saved, read.data.mid(saved, wholeLines - saved)));
    saved = wholeLines;
}

void PartialDump::remove()
{
    if (!file.remove())
        throwUnwritable(file, kRoomHint);
}

void PartialDump::removeIfEmpty()
{
    if (saved == 0)
        file.remove();
}

void PartialDump::write(const QByteArray &text)
{
    if (file.write(text) != text.size() || !file.flush())
        throwUnwritable(file, kRoomHint);
}

} // namespace host
