// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Where a command's data go: stdout, or a file that appears whole or not at all. Records may go to a file
// that grows instead: line_file.h.

#ifndef HOST_OUTPUT_SINK_H
#define HOST_OUTPUT_SINK_H

#include "host/base/options.h"

#include <QByteArray>
#include <QString>

#include <memory>

namespace host {

class OutputSink
{
public:
    virtual ~OutputSink() = default;

    // All of them fail when the data are not taken. What was put is out when put() returns, unless it is for
    // a file, which appears by commit().
    virtual void put(const QByteArray &bytes) = 0;
    virtual void commit() = 0;

    // Puts the line in front of all records.
    virtual void putHead(const QByteArray &head) { put(head); }
};

// Fails when a name stands for something other than a file, a device say, which a file would replace.
void checkOutputName(const QString &name);

// The file that -o names, or stdout without one or for "-".
std::unique_ptr<OutputSink> sinkFor(const OutputOptions &options);

} // namespace host

#endif
