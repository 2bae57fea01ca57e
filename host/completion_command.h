// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi completion: the script that lets a shell complete command lines of s7ppi.

#ifndef HOST_COMPLETION_COMMAND_H
#define HOST_COMPLETION_COMMAND_H

namespace CLI {
class App;
}

namespace host {

struct CommandLine;

void declareCompletion(CLI::App &app, CommandLine &line);

} // namespace host

#endif
