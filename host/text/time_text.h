// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Points in time as texts.

#ifndef HOST_TEXT_TIME_TEXT_H
#define HOST_TEXT_TIME_TEXT_H

#include <QString>

#include <chrono>

namespace host {

// Local time with its distance from UTC, ISO 8601 with milliseconds: 2026-11-21T10:07:50.123+01:00
QString timeText(std::chrono::system_clock::time_point time);

} // namespace host

#endif
