// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Runs one command and turns what it throws into what the shell sees.

#ifndef HOST_CLI_RUN_H
#define HOST_CLI_RUN_H

#include "host/base/options.h"

#include <functional>

namespace host {

// Settles the options' files first. The exit code: the command's own, a failure's after it was reported, or
// 128 and the signal's number after a signal that ends the program in order.
int run(Options &options, const std::function<int()> &command);

} // namespace host

#endif
