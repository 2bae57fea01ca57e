// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A test program that compiles fake_sleep.cpp gets its own nanosleep: pauses take no time and are
// written down instead. The product has no hook for this; the linker prefers the program's function.
// Every thread has its own list, plans and listener.

#ifndef TESTS_FAKE_SLEEP_H
#define TESTS_FAKE_SLEEP_H

#include <QList>
#include <QtGlobal>

namespace FakeSleep {

// Forgets the pauses so far and all planned interruptions.
void reset();

// The pauses asked for since reset(), in nanoseconds, in order, resumed ones included.
QList<qint64> pauses();

// The next times calls of nanosleep are cut short by a signal after half of their time (EINTR).
void interruptNext(int times);

// The next call of nanosleep fails with EINVAL.
void failNext();

// Called on every pause, before it is written down; for tests that keep one list of all events.
void setListener(void (*listener)(qint64 nanoseconds));

} // namespace FakeSleep

#endif
