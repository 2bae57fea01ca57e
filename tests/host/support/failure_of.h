// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What an expression that must fail says: "exit code: text / hint", or nothing when it does not fail.

#ifndef TESTS_HOST_SUPPORT_FAILURE_OF_H
#define TESTS_HOST_SUPPORT_FAILURE_OF_H

#include "host/base/failure.h"

#include <QString>

#include <optional>

template <typename Action> QString failureOf(const Action &action)
{
    try {
        action();
    } catch (const host::Failure &failure) {
        return QString("%1: %2 / %3").arg(int(failure.code())).arg(failure.text(), failure.hint());
    }
    return QString();
}

// The text of a failure that was kept; nothing without one.
inline QString textOf(const std::optional<host::Failure> &failure)
{
    return failure ? failure->text() : QString();
}

#endif
