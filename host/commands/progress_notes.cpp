// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/progress_notes.h"

#include <QString>

namespace host {

Connection::MessageRedirect notesAbove(Progress &progress, Connection &connection)
{
    return {connection, [&progress](const QString &text) { progress.note(text); }};
}

} // namespace host
