// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// Pauses of a driver under test, which take no time and are written down instead.
///
/// The product has no hook for this: a test program that is linked with it has a nanosleep() of its own,
/// which the linker prefers to the system's, also for the libraries that the program loads. Every thread has
/// its own list, plans and listener.

#ifndef TESTS_FAKE_SLEEP_H
#define TESTS_FAKE_SLEEP_H

#include <QList>
#include <QtGlobal>

/// What becomes of the pauses of this thread.
namespace FakeSleep {

/// Forgets the pauses so far and all planned interruptions.
void reset();

/// The pauses asked for since reset(), in nanoseconds, in order, resumed ones included.
QList<qint64> pauses();

/// The next times calls of nanosleep are cut short by a signal after half of their time (EINTR).
void interruptNext(int times);

/// The next call of nanosleep fails with EINVAL.
void failNext();

/// Called on every pause, before it is written down; for tests that keep one list of all events.
void setListener(void (*listener)(qint64 nanoseconds));

} // namespace FakeSleep

#endif
