// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Stdin, stdout and stderr, which whoever starts a program may have closed.

#ifndef COMMON_STANDARD_STREAMS_H
#define COMMON_STANDARD_STREAMS_H

namespace common {

// Keeps the places of those that are closed, so that no port or file that is opened later becomes one of them
// and takes what is meant for it. Reading and writing there fails as before. Call it before anything is
// opened.
void keepClosedStreams();

} // namespace common

#endif
