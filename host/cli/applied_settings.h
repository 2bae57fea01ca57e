// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The settings of environment and file, put into the options that the command line leaves open.

#ifndef HOST_CLI_APPLIED_SETTINGS_H
#define HOST_CLI_APPLIED_SETTINGS_H

#include "host/base/options.h"

namespace CLI {
class App;
}

namespace host {

// The first to say something is heard: the command line, then the environment, then the file; that holds as
// well between options that exclude each other. With --verbose what was taken is told. Fails on a wrong
// value, and when one place says two things that exclude each other.
void applySettings(CLI::App &app, Options &options);

} // namespace host

#endif
