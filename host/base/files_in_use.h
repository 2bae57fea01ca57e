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

// Notes that the command uses a file, before it is opened. Fails when the command uses it already in a role
// that does not go with this one. Two names are the same when the files behind them are, or, where none
// exists yet, when their places are.
void claimFile(const QString &name, FileRole role);

// Claims the files that -o and --trace name, before anything is opened or read. An -o that names stdout,
// however that is written, is taken out of the options. Fails when an option for a file or a port has an
// empty name.
void settleFiles(Options &options);

} // namespace host

#endif
