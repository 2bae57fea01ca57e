// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi check: whether addresses are right, and what would be sent for them.

#ifndef HOST_CHECK_COMMAND_H
#define HOST_CHECK_COMMAND_H

namespace CLI {
class App;
}

namespace host {

struct CommandLine;

void declareCheck(CLI::App &app, CommandLine &line);

} // namespace host

#endif
