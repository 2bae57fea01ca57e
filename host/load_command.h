// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi load: a file of memory written to a controller.

#ifndef HOST_LOAD_COMMAND_H
#define HOST_LOAD_COMMAND_H

namespace CLI {
class App;
}

namespace host {

struct CommandLine;

void declareLoad(CLI::App &app, CommandLine &line);

} // namespace host

#endif
