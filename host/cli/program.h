// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The program around its commands: parses the command line, runs the command it chooses, and turns what
// that throws into what the shell sees.

#ifndef HOST_CLI_PROGRAM_H
#define HOST_CLI_PROGRAM_H

#include <vector>

namespace CLI {
class App;
}

namespace host {

struct CommandLine;

using Declare = void (*)(CLI::App &, CommandLine &);

// Runs the program and returns its exit code.
int runProgram(int argc, char *argv[], const std::vector<Declare> &commands);

} // namespace host

#endif
