// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Stdin, stdout and stderr, which whoever starts a program may have closed.

#ifndef SIMULATOR_PROGRAM_STANDARD_STREAMS_H
#define SIMULATOR_PROGRAM_STANDARD_STREAMS_H

namespace sim {

// Keeps the places of those that are closed, so that no port or file that is opened later becomes one of
// them. Reading and writing there fails as before.
void keepClosedStreams();

} // namespace sim

#endif
