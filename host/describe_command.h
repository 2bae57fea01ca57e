// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi describe: what the plug-in says about itself.

#ifndef HOST_DESCRIBE_COMMAND_H
#define HOST_DESCRIBE_COMMAND_H

namespace CLI {
class App;
}

namespace host {

struct CommandLine;

void declareDescribe(CLI::App &app, CommandLine &line);

} // namespace host

#endif
