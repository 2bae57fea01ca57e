// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Code that nobody can vouch for, in a process of its own.

#ifndef HOST_DIAGNOSIS_ISOLATION_H
#define HOST_DIAGNOSIS_ISOLATION_H

#include <QByteArray>
#include <QString>

#include <chrono>
#include <functional>

namespace host {

struct IsolatedEnd
{
    QByteArray result; // what the action returned
    QString fault;     // why there is no whole result: it crashed, ended the process, or took too long
};

// Runs the action in a copy of this process. What it prints goes to stderr. The process must have no other
// threads.
IsolatedEnd runIsolated(const std::function<QByteArray()> &action, std::chrono::milliseconds limit);

} // namespace host

#endif
