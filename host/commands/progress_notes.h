// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a connection tells of its port while a command shows how far it has come.

#ifndef HOST_COMMANDS_PROGRESS_NOTES_H
#define HOST_COMMANDS_PROGRESS_NOTES_H

#include "host/driver/connection.h"
#include "host/output/progress.h"

namespace host {

// While the result lives, what the connection tells stands above the progress, so that the two do not
// overwrite each other on a terminal.
Connection::MessageRedirect notesAbove(Progress &progress, Connection &connection);

} // namespace host

#endif
