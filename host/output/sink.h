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
#include <utility>

namespace host {

class OutputSink
{
public:
    virtual ~OutputSink() = default;

    // All of them fail when the data are not taken. What was put is out when put() returns, unless it is for
    // a file, which appears by commit().
    virtual void put(const QByteArray &bytes) = 0;
    virtual void commit() = 0;

    // Puts text for people.
    virtual void putText(const QString &text) { put(text.toUtf8()); }

    // Puts the line in front of all records.
    virtual void putHead(const QByteArray &head) { put(head); }
};

// Passes on in one piece what was put until flush(), or until there is much of it.
class BatchSink : public OutputSink
{
public:
    explicit BatchSink(std::unique_ptr<OutputSink> sink) : target(std::move(sink)) {}

    void put(const QByteArray &bytes) override;
    void flush();
    void commit() override;

private:
    std::unique_ptr<OutputSink> target;
    QByteArray batch;
};

// Fails when a name stands for something other than a file, a device say, which a file would replace.
void checkOutputName(const QString &name);

// The file that -o names, or stdout without one or for "-".
std::unique_ptr<OutputSink> sinkFor(const OutputOptions &options);

} // namespace host

#endif
