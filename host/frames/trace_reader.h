// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The records of a trace; trace_file.h has the form.

#ifndef HOST_FRAMES_TRACE_READER_H
#define HOST_FRAMES_TRACE_READER_H

#include <QByteArray>
#include <QString>

#include <optional>

namespace host {

struct TraceRecord
{
    QString time;
    QString direction; // ">" from the master, "<" to it
    QByteArray bytes;
};

// Nothing for a comment or an empty line. Fails on what is neither that nor a record.
std::optional<TraceRecord> parseTraceLine(const QByteArray &line);

} // namespace host

#endif
