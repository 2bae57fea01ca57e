// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Ctrl-C and SIGTERM end the program in order: the request under way is given up, what was read has
// been printed, the embedded simulator is stopped. A second signal ends it at once.

#ifndef HOST_INTERRUPTION_H
#define HOST_INTERRUPTION_H

#include <exception>

namespace host {

// Thrown instead of a failure that is only the signal's doing.
class Interrupted : public std::exception
{
};

void catchInterruptions();

// The signal that arrived, or 0.
int interruptingSignal();

} // namespace host

#endif
