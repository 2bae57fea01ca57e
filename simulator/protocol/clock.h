// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Time as the simulator counts it. Nothing in the library looks at a real clock but Server: tests move the
// time themselves.

#ifndef SIMULATOR_PROTOCOL_CLOCK_H
#define SIMULATOR_PROTOCOL_CLOCK_H

#include <chrono>

namespace sim {

// A span, or a moment: then counted from the beginning of 1970, UTC, or from any other zero that a test
// chooses. Fine enough that a slow line's byte times add up without drift.
using Time = std::chrono::nanoseconds;

} // namespace sim

#endif
