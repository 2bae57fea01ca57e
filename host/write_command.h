// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi write: values into the controller's memory.

#ifndef HOST_WRITE_COMMAND_H
#define HOST_WRITE_COMMAND_H

namespace CLI {
class App;
}

namespace host {

struct CommandLine;

void declareWrite(CLI::App &app, CommandLine &line);

} // namespace host

#endif
