// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// One good exchange of every kind, and the least that any driver must do for it.

#ifndef BENCH_EXCHANGES_H
#define BENCH_EXCHANGES_H

#include "driver_interface.h"

#include <QByteArray>

#include <vector>

namespace bench {

struct Exchange
{
    const char *name;
    CommunicatorCommand command;
    QByteArray data;    // of a write; a read has none
    QByteArray request; // the frame on the line, for the floor
    QByteArray answer;

    bool isWrite() const { return !data.isEmpty(); }
};

// All kinds. The request frames are taken from the driver itself.
std::vector<Exchange> allExchanges(DriverInterface &driver);

// One exchange through the driver; false when it fails.
bool runDriver(DriverInterface &driver, AbstractDeviceInterface &port, const Exchange &exchange);

// The same calls of the port with frames prepared beforehand: what is left when the driver costs nothing.
void runFloor(AbstractDeviceInterface &port, const Exchange &exchange);

} // namespace bench

#endif
