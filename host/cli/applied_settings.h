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

// Sets the options that the command line leaves open as environment and file say; the environment comes
// first. An option that excludes another one is not taken when a place that comes earlier has set that one.
// With --verbose every setting that is taken is told. Fails on a wrong value, and when one place sets two
// options that exclude each other.
void applySettings(CLI::App &app, Options &options);

} // namespace host

#endif
