// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "partial_dump.h"

#include "memory_range.h"

namespace host {

namespace {

const char kRestartHint[] = "--restart begins anew and forgets it; or name another file with -o";

QString dumpName(const Item &range, int station)
{
    return QString("%1 of station %2").arg(rangeText(range)).arg(station);
}

} // namespace

PartialDump::PartialDump(const QString &name, const Item &range, int station, bool restart)
    : file(name), read{range, station, {}}
{
    const bool goesOn = file.exists() && !restart;
    if (!file.open(goesOn ? QIODevice::ReadWrite : QIODevice::WriteOnly | QIODevice::Truncate))
        throw lost();
    if (goesOn)
        resume();
    else
        write(dumpHead(range, station));
}

// A line that was not finished is written again.
void PartialDump::resume()
{
    const QByteArray text = file.readAll();
    int wholeSize = 0;
    try {
        const Dump found = parsePartialDump(text, name(), wholeSize);
        checkSame(found);
        read.data = found.data;
        saved = int(found.data.size());
    } catch (const Failure &failure) {
        throw Failure(failure.code(), failure.text(), kRestartHint);
    }
    if (!file.resize(wholeSize) || !file.seek(wholeSize))
        throw lost();
}

void PartialDump::checkSame(const Dump &found) const
{
    const QString foundName = dumpName(found.range, found.station);
    if (foundName != dumpName(read.range, read.station))
        throw Failure(ExitCode::Usage, name() + " is a part of another dump, " + foundName, kRestartHint);
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
        throw lost();
}

void PartialDump::write(const QByteArray &text)
{
    if (file.write(text) != text.size() || !file.flush())
        throw lost();
}

Failure PartialDump::lost() const
{
    return Failure(ExitCode::OutputLost, name() + " cannot be written: " + file.errorString(),
                   "check the directory, its rights and its room");
}

} // namespace host
