// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the program s7ppi-sim tells its user, on stderr.

#ifndef SIMULATOR_PROGRAM_COMPLAINT_H
#define SIMULATOR_PROGRAM_COMPLAINT_H

#include <string>

namespace sim {

void note(const std::string &text);

// Something cannot be done; a second line tells what helps.
void complain(const std::string &text, const std::string &hint);

// The two lines of complain().
std::string complaint(const std::string &text, const std::string &hint);

} // namespace sim

#endif
