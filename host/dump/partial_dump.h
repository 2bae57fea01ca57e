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

// Where the memory of a dump comes from.
struct DumpSource
{
    Item range;
    int station;
    QString port; // as the user names it
};

class PartialDump
{
public:
    // The dump goes on with the file when it is there, as far as it fits the range, and else, or to restart,
    // begins it anew. Fails when the file is of another dump, of another port or station or with another
    // first address, is none, cannot be written, or is being written by another process.
    PartialDump(const QString &name, const DumpSource &source, bool restart);

    // Adds whole elements behind those that are there. The file gets whole lines only: after a stop up to one
    // line less one byte is read once more.
    void append(const QByteArray &data);

    void remove();

    // Removes the file when nothing of the memory is in it; that it cannot be removed is no failure then.
    void removeIfEmpty();

    // How many bytes of memory are in the file.
    int savedSize() const { return saved; }

    // When the earlier run wrote with which this one goes on; invalid when there was none.
    QDateTime earlierTime() const { return earlier; }

    // All that has been read, in this run and before.
    const Dump &dump() const { return read; }

    QString name() const { return file.fileName(); }

private:
    void lock();
    void resume();
    void checkSame(const Dump &found, const QString &foundPort) const;
    void writeAnew();
    void write(const QByteArray &text);

    QFile file;
    QString port;
    Dump read;
    int saved = 0;
    QDateTime earlier;
};

} // namespace host

#endif
