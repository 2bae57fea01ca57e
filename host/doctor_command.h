// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi doctor: what may be wrong between this machine and a controller.

#ifndef HOST_DOCTOR_COMMAND_H
#define HOST_DOCTOR_COMMAND_H

namespace CLI {
class App;
}

namespace host {

struct CommandLine;

void declareDoctor(CLI::App &app, CommandLine &line);

} // namespace host

#endif
