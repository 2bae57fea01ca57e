// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Which requests to the driver bring the values of an item. One answer frame carries up to 222 bytes.

#ifndef HOST_DRIVER_READ_PLAN_H
#define HOST_DRIVER_READ_PLAN_H

#include "host/driver/request_form.h"

#include <QByteArray>
#include <QList>

#include <functional>

namespace host {

class Connection;

struct ReadRequest
{
    CommunicatorCommand command;
    int size;          // bytes that the driver must hand back
    int reversedWidth; // they lie reversed in groups of this many; 1: as in the controller
};

struct ReadPlan
{
    QList<ReadRequest> requests;
    int firstBit; // whole bytes are read, and the bits begin here; -1 when no bits need to be picked out
};

ReadPlan planRead(const Item &item);

// A function that runs one request: it returns the driver's data or throws a Failure.
using ReadFunction = std::function<QByteArray(const CommunicatorCommand &)>;

// Returns the bytes of an item, as decodeValues() takes them. Fails when one of the requests does, or brings
// fewer bytes than were asked for.
QByteArray readItem(const Item &item, const ReadFunction &read);

// Reads an item from the controller at the end of a connection.
QByteArray readItem(Connection &connection, const Item &item);

// Returns the range in parts that one frame carries to the host, in their order.
QList<Item> readBlocks(const Item &range);

} // namespace host

#endif
