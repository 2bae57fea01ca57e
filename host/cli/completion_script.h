// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Completion as the shells want it.

#ifndef HOST_CLI_COMPLETION_SCRIPT_H
#define HOST_CLI_COMPLETION_SCRIPT_H

#include "host/cli/completion.h"

#include <QString>

namespace host {

QString bashScript(const Completion &completion);
QString zshScript(const Completion &completion);
QString fishScript(const Completion &completion);

} // namespace host

#endif
