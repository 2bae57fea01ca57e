// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi scan: which stations answer on a line.

#ifndef HOST_SCAN_COMMAND_H
#define HOST_SCAN_COMMAND_H

namespace CLI {
class App;
}

namespace host {

struct CommandLine;

void declareScan(CLI::App &app, CommandLine &line);

} // namespace host

#endif
