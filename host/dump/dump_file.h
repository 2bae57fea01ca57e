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
// begin with #, mean nothing but for "# simulated", the mark of a simulated controller's memory. A file whose
// lines end before LAST is a part of a dump.

#ifndef HOST_DUMP_DUMP_FILE_H
#define HOST_DUMP_DUMP_FILE_H

#include "host/items/item.h"

#include <QByteArray>
#include <QString>

namespace host {

// How many bytes stand in one line.
constexpr int kDumpLineSize = 16;

struct Dump
{
    Item range;
    int station;
    QByteArray data;          // from the range's first byte on, as in the controller
    bool isSimulated = false; // it was the simulated controller's memory
};

// The beginning of a dump, which stands before the lines of data.
QByteArray dumpHead(const Item &range, int station);

// The lines for data, whole elements, that lie so many bytes behind the first one of the range.
QByteArray dumpLines(const Item &range, int offset, const QByteArray &data);

// The text of the whole file.
QByteArray dumpText(const Dump &dump);

// Reads a dump that must be whole. Fails, naming file and line, when it is no whole dump.
Dump parseDump(const QByteArray &text, const QString &name);

// Reads the dump that a file has, which must be whole. Fails also when the file cannot be read.
Dump readDump(const QString &name);

// Reads a part of a dump, which may end anywhere behind its head. A last line without an end counts as not
// written; wholeSize becomes the number of the text's bytes before it.
Dump parsePartialDump(const QByteArray &text, const QString &name, int &wholeSize);

} // namespace host

#endif
