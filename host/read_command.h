// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi read: the values of some items, once.

#ifndef HOST_READ_COMMAND_H
#define HOST_READ_COMMAND_H

namespace CLI {
class App;
}

namespace host {

struct CommandLine;

void declareRead(CLI::App &app, CommandLine &line);

} // namespace host

#endif
