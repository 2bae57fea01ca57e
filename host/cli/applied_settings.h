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

// Sets the options that the command line leaves open as environment, profile and file say, of which the one
// that is named first here comes first. An option that excludes another one is not taken when a place that
// comes earlier has set that one. Every option's value and where it comes from is noted in the options' own
// list, and with --verbose every setting that is taken is told. Fails on a wrong value, when one place sets
// two options that exclude each other, and when there is no profile of the name.
void applySettings(CLI::App &app, Options &options);

} // namespace host

#endif
