// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Ctrl-C, SIGTERM, SIGQUIT and SIGHUP end the program in order: the request under way is given up, what
// was read has been printed, the terminal is restored, the embedded simulator is stopped. A second signal
// ends it at once.

#ifndef HOST_BASE_INTERRUPTION_H
#define HOST_BASE_INTERRUPTION_H

#include <exception>

namespace host {

// Thrown instead of a failure that is only the signal's doing.
class Interrupted : public std::exception
{
};

// Leaves SIGHUP alone when it is ignored, as under nohup.
void catchInterruptions();

// The signal that arrived, or 0.
int interruptingSignal();

// Waits are cut into slices of so many milliseconds, so that a signal is seen soon even if it arrives just
// before one.
constexpr int kInterruptionSlice = 50;

// Returns when the descriptor has bytes or has come to its end; throws Interrupted when a signal arrives
// first.
void awaitReadable(int descriptor);

// Sets what a second signal does before it ends the program; null for nothing. The action runs in the signal
// handler and may make no calls but async-signal-safe ones.
void setLastResort(void (*action)());

// Runs what is set; async-signal-safe.
void runLastResort();

} // namespace host

#endif
