// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Which requests to the driver write the values of an item, and none of its neighbours.
//
// A controller takes PDUs of up to 240 bytes. 28 of them stand before the data; a bit needs 18 bytes with
// its address, all bits together 11 more. So one request carries up to 212 bytes of memory, 42 timers, 70
// counters or 12 bits.

#ifndef HOST_DRIVER_WRITE_PLAN_H
#define HOST_DRIVER_WRITE_PLAN_H

#include "host/driver/request_form.h"

#include <QByteArray>
#include <QList>

namespace host {

// Bytes of memory that one request writes at most.
constexpr int kWrittenFrameData = 212;

struct WriteRequest
{
    CommunicatorCommand command;
    QByteArray data; // in the driver's order
};

// Returns the requests that write the item's bytes, which are given as decodeValues() takes them. The
// requests come in the order of their addresses; the data of all of them are the item's. An
// item with a raw address is one request, whatever its size.
QList<WriteRequest> planWrite(const Item &item, const QByteArray &data);

} // namespace host

#endif
