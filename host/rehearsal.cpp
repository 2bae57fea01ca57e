// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "rehearsal.h"

#include "driver_fault.h"
#include "driver_log.h"
#include "rehearsal_port.h"
#include "report.h"

namespace host {

// What the driver logs here is only that nobody answers its poll.
Rehearsal::Rehearsal(const Options &options)
    : plugin(findPlugin(options)), station(options.station.value_or(plugin.driverDefaults()->stationid))
{
    installDriverLog(false);
}

void Rehearsal::write(const WriteRequest &request) const
{
    RehearsalPort port(station, printData);
    plugin.driver().write(&port, request.command, request.data);
    if (!port.hasSent())
        throw driverFailure(plugin.driver().getLastError());
}

void Rehearsal::read(const ReadRequest &request) const
{
    RehearsalPort port(station, printData);
    plugin.driver().read(&port, request.command);
    if (!port.hasSent())
        throw driverFailure(plugin.driver().getLastError());
}

} // namespace host
