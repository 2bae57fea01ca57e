// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The part of a dump that was read so far, in a file: what was read before Ctrl-C, a failure or a power cut
// need not be read again. It is a dump that may end early, with the port in a comment line "# port NAME".

#ifndef HOST_DUMP_PARTIAL_DUMP_H
#define HOST_DUMP_PARTIAL_DUMP_H

#include "host/base/failure.h"
#include "host/dump/dump_file.h"

#include <QByteArray>
#include <QDateTime>
#include <QFile>
#include <QString>

namespace host {

// Where a dump comes from.
struct DumpSource
{
    Item range;
    int station;
    QString port; // as the user names it
};

class PartialDump
{
public:
    // Goes on with the file when it is there, as far as it fits the range, and else, or to restart, begins it
    // anew. Fails when the file is of another dump, of another port or station or with another first address,
    // is none, cannot be written, or is being written by another process.
    PartialDump(const QString &name, const DumpSource &source, bool restart);

    // Whole elements, behind those that are there. In the file are whole lines: after a stop up to one line
    // less one byte is read once more.
    void append(const QByteArray &data);

    void remove();

    // The same when nothing of the memory is in it; that it cannot be done is no failure then.
    void removeIfEmpty();

    // Bytes of memory that are in the file.
    int savedSize() const { return saved; }

    // When an earlier run wrote what is gone on with; invalid when there is none.
    QDateTime earlierTime() const { return earlier; }

    // All that was read.
    const Dump &dump() const { return read; }

    QString name() const { return file.fileName(); }

private:
    void lock();
    void resume();
    void checkSame(const Dump &found, const QString &foundPort) const;
    void writeAnew();
    void write(const QByteArray &text);
    Failure lost() const;

    QFile file;
    QString port;
    Dump read;
    int saved = 0;
    QDateTime earlier;
};

} // namespace host

#endif
