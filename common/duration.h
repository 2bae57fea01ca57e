// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Spans of time as users write them: "500ms", "1.5 s", "2min", "1h", "7d".

#ifndef COMMON_DURATION_H
#define COMMON_DURATION_H

#include <chrono>
#include <optional>
#include <string>

namespace common {

using Milliseconds = std::chrono::milliseconds;

// The words with which a message tells how times are written.
extern const char kDurationExamples[];

// Reads the whole text as a time; a number without a unit counts in the plain one. Gives nothing when the
// text is no time, or none of whole milliseconds, or longer than a thousand years.
std::optional<Milliseconds> parseDuration(const std::string &text, Milliseconds plainUnit);

// The time in the largest unit of which it is a whole number: "500ms", "90s", "1h". No time is "0s".
std::string durationText(Milliseconds time);

} // namespace common

#endif
