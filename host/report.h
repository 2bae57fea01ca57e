// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the user reads on stderr. stdout is for data alone.

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

} // namespace host

#endif
