// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// Pauses and the monotonic clock.

#ifndef TOOLS_TIMING_H
#define TOOLS_TIMING_H

#include <QtGlobal>

/// Sleeps for ms milliseconds, signals notwithstanding; 0 returns without a system call. The time is counted
/// in 32 bits of nanoseconds: from 4295 ms on it wraps (5000 ms sleep 0.705032704 s). Kept: callers stay
/// below (sleepAsksForOnePause).
Q_DECL_EXPORT void HRSleep(unsigned long ms);

/// Milliseconds of the monotonic clock, rounded down. It never goes back, whatever becomes of the wall clock.
Q_DECL_EXPORT qint64 CurrentMSecsSinceBoot();

#endif
