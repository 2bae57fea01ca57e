// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What this process holds of the machine.

#ifndef TESTS_SOAK_PROCESS_STATE_H
#define TESTS_SOAK_PROCESS_STATE_H

#include <QString>
#include <QtGlobal>

namespace soak {

struct ProcessState
{
    qint64 heap;     // bytes that were taken from it and not given back
    qint64 resident; // bytes
    int descriptors;
};

ProcessState processState();

// What grew between two moments more than it may; empty when nothing did.
QString growth(const ProcessState &before, const ProcessState &after);

QString toString(const ProcessState &state);

} // namespace soak

#endif
