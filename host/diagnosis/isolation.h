// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Code that nobody can vouch for, in a process of its own.

#ifndef HOST_DIAGNOSIS_ISOLATION_H
#define HOST_DIAGNOSIS_ISOLATION_H

#include "host/base/failure.h"

#include <QByteArray>

#include <chrono>
#include <functional>
#include <optional>

namespace host {

struct IsolatedEnd
{
    QByteArray result; // what the action returned
    std::optional<Failure>
        failure; // why there is no whole result: it crashed, ended the process, or took too long
};

// Runs the action in a copy of this process. What it prints goes to stderr. The process must have no other
// threads.
IsolatedEnd runIsolated(const std::function<QByteArray()> &action, std::chrono::milliseconds limit);

} // namespace host

#endif
