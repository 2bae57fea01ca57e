// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi ports: the serial ports of this machine.

#ifndef HOST_PORTS_COMMAND_H
#define HOST_PORTS_COMMAND_H

namespace CLI {
class App;
}

namespace host {

struct CommandLine;

void declarePorts(CLI::App &app, CommandLine &line);

} // namespace host

#endif
