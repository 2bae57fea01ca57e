// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi read: the values of some items, once, one line each.

#ifndef HOST_READ_COMMAND_H
#define HOST_READ_COMMAND_H

#include "options.h"

#include <string>
#include <vector>

namespace host {

// Reads the items in order. An item that fails is reported and the next one read, as long as the port
// is there; the exit code is that of the first failure.
int readCommand(const Options &options, const std::vector<std::string> &items);

} // namespace host

#endif
