// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi dump: a stretch of memory in a file.

#ifndef HOST_DUMP_COMMAND_H
#define HOST_DUMP_COMMAND_H

namespace CLI {
class App;
}

namespace host {

struct CommandLine;

void declareDump(CLI::App &app, CommandLine &line);

} // namespace host

#endif
