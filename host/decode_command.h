// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi decode: frames of the line, byte by byte.

#ifndef HOST_DECODE_COMMAND_H
#define HOST_DECODE_COMMAND_H

namespace CLI {
class App;
}

namespace host {

struct CommandLine;

void declareDecode(CLI::App &app, CommandLine &line);

} // namespace host

#endif
