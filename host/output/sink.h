// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Where a command's data go: stdout, or a file that appears whole or not at all.

#ifndef HOST_OUTPUT_SINK_H
#define HOST_OUTPUT_SINK_H

#include "host/base/options.h"

#include <QByteArray>

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
};

// The file that -o names, or stdout without one or for "-".
std::unique_ptr<OutputSink> sinkFor(const OutputOptions &options);

} // namespace host

#endif
