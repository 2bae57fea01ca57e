// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The traffic as a file that programs can read. docs/trace-format.md describes it. A file whose name ends
// with .pcapng is a capture for Wireshark; see common/capture.h.

#ifndef SIMULATOR_TRACE_TRACE_FILE_H
#define SIMULATOR_TRACE_TRACE_FILE_H

#include "simulator/line/controllers.h"
#include "simulator/protocol/bytes.h"
#include "simulator/protocol/clock.h"

#include <fstream>
#include <string>

namespace sim {

// Returns "2026-01-31T12:00:00.250Z > 10 02 00 5c 5e 16", without a line end. ">" is what a master sends, "<"
// what it receives. The time counts from the beginning of 1970, UTC.
std::string traceRecord(Time time, Traffic traffic, const Bytes &bytes);

class TraceFile
{
public:
    // Begins the file anew, with the heading as a comment. Throws UserError.
    TraceFile(const std::string &path, const std::string &heading);

    // What is written can be read at once. Returns false once, when the file takes no more; later records are
    // lost.
    bool write(Time time, Traffic traffic, const Bytes &bytes);

    bool isGood() const { return file.good(); }

private:
    bool put(const std::string &piece);

    std::ofstream file;
    bool isCapture;
};

} // namespace sim

#endif
