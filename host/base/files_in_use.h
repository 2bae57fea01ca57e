// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The files of a command, so that no output destroys what the command reads, or another output, or goes to
// the port.

#ifndef HOST_BASE_FILES_IN_USE_H
#define HOST_BASE_FILES_IN_USE_H

#include "host/base/options.h"

#include <QString>

namespace host {

// All but the first two are outputs.
enum class FileRole { Input, Port, Data, Trace, Unfinished };

// Before the file is opened. Fails when it is in use in a role that does not go with this one. Names are the
// same when the files behind them are; those that do not exist yet, when their places are.
void claimFile(const QString &name, FileRole role);

// Claims what -o and --trace name, before anything is opened or read; -o with stdout under any name becomes
// none. Fails when there is no name, or no name of a port.
void settleFiles(Options &options);

} // namespace host

#endif
