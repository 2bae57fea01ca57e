// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What s7ppi-sim tells its user on stderr.

#ifndef SIMULATOR_PROGRAM_COMPLAINT_H
#define SIMULATOR_PROGRAM_COMPLAINT_H

#include <string>

namespace sim {

// Tells what the user may want to know. Nothing is wrong.
void note(const std::string &text);

// Tells that something cannot be done; a second line, the hint, tells what helps.
void complain(const std::string &text, const std::string &hint);

// Returns the two lines of complain().
std::string complaint(const std::string &text, const std::string &hint);

} // namespace sim

#endif
