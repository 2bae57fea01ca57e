// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What has to be so before anything is written: what tag files allow, what --expect expects, and the user's
// yes to the question of --confirm.

#ifndef HOST_COMMANDS_WRITE_CONDITIONS_H
#define HOST_COMMANDS_WRITE_CONDITIONS_H

#include "host/base/outcome.h"
#include "host/driver/connection.h"
#include "host/driver/read_plan.h"
#include "host/items/assignment.h"
#include "host/items/change.h"
#include "host/items/tag.h"

#include <QString>

#include <vector>

namespace CLI {
class App;
}

namespace host {

// Declares --confirm.
void addConfirmOption(CLI::App &command, bool &confirm);

// Reports whatever the tags have against the assignments.
void checkTags(const std::vector<Assignment> &assignments, const std::vector<Tag> &tags, int usualStation,
               Outcome &outcome);

// Reads items, and reports those that do not have the values that are assigned here, bit for bit.
void checkExpected(const std::vector<Assignment> &expected, Connection &connection, const PlanLimits &limits,
                   Outcome &outcome);

// Reads the values that are going to be replaced.
ChangeTable readChanges(const std::vector<Assignment> &assignments, Connection &connection,
                        const PlanLimits &limits, Outcome &outcome);

// Shows what changes where, counted in a unit, "values", and asks whether that is to be written.
bool isWriteConfirmed(const QString &place, const ChangeTable &changes, const QString &unit);

// Tells that a command ends before it has written anything.
void reportNothingWritten();

} // namespace host

#endif
