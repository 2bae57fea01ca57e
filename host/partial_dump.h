// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The part of a dump that was read so far, in a file: what was read before Ctrl-C, a failure or a power cut
// need not be read again.

#ifndef HOST_PARTIAL_DUMP_H
#define HOST_PARTIAL_DUMP_H

#include "dump_file.h"
#include "failure.h"

#include <QFile>

namespace host {

class PartialDump
{
public:
    // Goes on with the file when it is there, and else, or to restart, begins it anew. Fails when the file is
    // of another dump, is none, or cannot be written.
    PartialDump(const QString &name, const Item &range, int station, bool restart);

    // Whole elements, behind those that are there. In the file are whole lines: after a stop up to one line
    // less one byte is read once more.
    void append(const QByteArray &data);

    void remove();

    // Bytes of memory that are in the file.
    int savedSize() const { return saved; }

    // All that was read.
    const Dump &dump() const { return read; }

    QString name() const { return file.fileName(); }

private:
    void resume();
    void checkSame(const Dump &found) const;
    void write(const QByteArray &text);
    Failure lost() const;

    QFile file;
    Dump read;
    int saved = 0;
};

} // namespace host

#endif
