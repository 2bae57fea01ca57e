// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// s7ppi describe: what the plug-in says about itself.

#ifndef HOST_DESCRIBE_COMMAND_H
#define HOST_DESCRIBE_COMMAND_H

#include "options.h"

namespace host {

int describeCommand(const Options &options);

} // namespace host

#endif
