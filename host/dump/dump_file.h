// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Memory in a text file, so that it can be kept, compared and written back.
//
//   file    := "s7ppi-dump 1" NL area station { line }
//   area    := "area " FIRST ".." LAST NL
//   station := "station " NUMBER NL
//   line    := ADDRESS { " " ELEMENT } NL      an element has two hexadecimal digits per byte
//
// Lines continue each other without a gap; those that are written hold 16 bytes. Empty lines, and lines that
// begin with #, mean nothing. A file whose lines end before LAST is a part of a dump.

#ifndef HOST_DUMP_DUMP_FILE_H
#define HOST_DUMP_DUMP_FILE_H

#include "host/items/item.h"

#include <QByteArray>
#include <QString>

namespace host {

// Bytes in one line.
constexpr int kDumpLineSize = 16;

struct Dump
{
    Item range;
    int station;
    QByteArray data; // from the range's first byte on, as in the controller
};

// What stands before the lines.
QByteArray dumpHead(const Item &range, int station);

// Lines for data that lie so many bytes behind the first one; whole elements.
QByteArray dumpLines(const Item &range, int offset, const QByteArray &data);

// The whole file.
QByteArray dumpText(const Dump &dump);

// What a file says. Fails, naming file and line, when it is no whole dump.
Dump parseDump(const QByteArray &text, const QString &name);

// The same for a part, which may end anywhere, but for what stands before the lines. A last line without an
// end counts as not written. wholeSize: bytes of the text up to there.
Dump parsePartialDump(const QByteArray &text, const QString &name, int &wholeSize);

} // namespace host

#endif
