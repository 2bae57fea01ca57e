// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi watch: the values of some items, again and again.

#ifndef HOST_WATCH_COMMAND_H
#define HOST_WATCH_COMMAND_H

namespace CLI {
class App;
}

namespace host {

struct CommandLine;

void declareWatch(CLI::App &app, CommandLine &line);

} // namespace host

#endif
