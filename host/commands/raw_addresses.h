// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What commands make of items whose addresses only the driver understands.

#ifndef HOST_COMMANDS_RAW_ADDRESSES_H
#define HOST_COMMANDS_RAW_ADDRESSES_H

#include "host/base/options.h"
#include "host/items/raw_item.h"

#include <QString>

namespace host {

// How the items of the command line are written.
Notation notationOf(const DriverOptions &options);

// Fails when addresses are for the driver alone; for commands that know the controller's memory.
void refuseRawAddresses(const DriverOptions &options, const QString &command);

// The paragraph on them in the help of commands with items.
extern const char kRawFooter[];

} // namespace host

#endif
