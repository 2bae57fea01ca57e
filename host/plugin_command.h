// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi plugin: what a library has of what a panel needs.

#ifndef HOST_PLUGIN_COMMAND_H
#define HOST_PLUGIN_COMMAND_H

namespace CLI {
class App;
}

namespace host {

struct CommandLine;

void declarePlugin(CLI::App &app, CommandLine &line);

} // namespace host

#endif
