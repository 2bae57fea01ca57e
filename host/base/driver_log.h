// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Where the messages of driver and Qt go.

#ifndef HOST_BASE_DRIVER_LOG_H
#define HOST_BASE_DRIVER_LOG_H

namespace host {

// Debug messages go to stderr when verbose and nowhere otherwise; warnings always go to stderr.
void installDriverLog(bool verbose);

} // namespace host

#endif
