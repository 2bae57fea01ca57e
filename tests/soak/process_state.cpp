// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "process_state.h"

#include <QFile>

#include <filesystem>
#include <iterator>
#include <malloc.h>
#include <unistd.h>

namespace {

using DirectoryIterator = std::filesystem::directory_iterator;

// What one moment may have more than another: the texts of the last call, and a page table's worth of
// fragments.
const qint64 kHeapBound = 16 * 1024;
const qint64 kResidentBound = 256 * 1024;

QString grew(const char *what, qint64 before, qint64 after)
{
    return QString::fromLatin1("%1 grew from %2 to %3\n").arg(QLatin1String(what)).arg(before).arg(after);
}

} // namespace

namespace soak {

ProcessState processState()
{
    ProcessState state = {};
    // What is free belongs to the heap for a while: how much of it depends on the largest write of the last
    // calls.
    malloc_trim(0);
    state.descriptors = int(std::distance(DirectoryIterator("/proc/self/fd"), DirectoryIterator()));
    QFile pages(QLatin1String("/proc/self/statm"));
    if (pages.open(QIODevice::ReadOnly))
        state.resident = pages.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
    state.heap = qint64(mallinfo2().uordblks);
    return state;
}

QString growth(const ProcessState &before, const ProcessState &after)
{
    QString text;
    if (after.heap > before.heap + kHeapBound)
        text += grew("bytes in use", before.heap, after.heap);
    if (after.resident > before.resident + kResidentBound)
        text += grew("resident bytes", before.resident, after.resident);
    if (after.descriptors > before.descriptors)
        text += grew("open descriptors", before.descriptors, after.descriptors);
    return text;
}

QString toString(const ProcessState &state)
{
    return QString::fromLatin1("%1 bytes in use, %2 KiB resident, %3 descriptors")
        .arg(state.heap)
        .arg(state.resident / 1024)
        .arg(state.descriptors);
}

} // namespace soak
