// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Time as the simulator counts it. Only Server looks at a real clock; everything else is told what time it
// is, so that a test can move the time itself.

#ifndef SIMULATOR_PROTOCOL_CLOCK_H
#define SIMULATOR_PROTOCOL_CLOCK_H

#include <chrono>

namespace sim {

// A span of time, or a moment, which is the span since the beginning of 1970, UTC, or since any other zero
// that a test chooses. A byte takes 1,145,833 ns at 9600 baud: coarser units would let the bytes of a long
// frame drift.
using Time = std::chrono::nanoseconds;

} // namespace sim

#endif
