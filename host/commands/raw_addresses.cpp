// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/raw_addresses.h"

#include "host/base/failure.h"
#include "host/driver/plugin.h"

namespace host {

const char kRawFooter[] = R"(

With --raw-address, and with the plug-in of another driver, an item is TEXT:TYPE[*COUNT][@STATION]:
TEXT goes to the driver as it is, one request for each item.)";

Notation notationOf(const DriverOptions &options)
{
    return takesRawAddresses(options) ? Notation::Raw : Notation::Controller;
}

void refuseRawAddresses(const DriverOptions &options, const QString &command)
{
    if (notationOf(options) == Notation::Controller)
        return;
    throw Failure(ExitCode::Usage, command + " knows the addresses of the S7-200 only",
                  options.rawAddress
                      ? "leave out --raw-address, or use read, write, watch and doctor"
                      : "with the plug-in of another driver there are read, write, watch, doctor "
                        "and describe");
}

} // namespace host
