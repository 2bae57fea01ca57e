// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the user reads: data on stdout, everything else on stderr.

#ifndef HOST_REPORT_H
#define HOST_REPORT_H

#include <QString>

namespace host {

class Failure;

void reportNote(const QString &text);

// Two lines: the error, and the hint that goes with it.
void reportFailure(const Failure &failure);
void reportFailure(const QString &subject, const Failure &failure);

// A line of the trace, without the program's name.
void reportTrace(const QString &line);

// A line of data. It is out when this returns: what was read is seen even if the program is stopped then.
void printData(const QString &line);

} // namespace host

#endif
