// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The options that all commands share.

#ifndef HOST_CLI_COMMON_OPTIONS_H
#define HOST_CLI_COMMON_OPTIONS_H

#include "host/base/options.h"

namespace CLI {
class App;
}

namespace host {

void declareCommonOptions(CLI::App &app, Options &options);

} // namespace host

#endif
