// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// How the values of an item lie in the driver's requests, alike for reads and writes.
//
// The driver splits nothing: what is longer than one frame carries becomes several requests. Data lie in
// the byte order that the last letter of the request's address chooses, whatever the data type: W turns
// every two bytes round, D every four, and everything else stays as in the controller, most significant
// byte first. Values of timers and counters are turned round by two, those of high-speed counters by four.

#ifndef HOST_DRIVER_REQUEST_FORM_H
#define HOST_DRIVER_REQUEST_FORM_H

#include "communicator_command.h"
#include "host/items/area.h"
#include "host/items/item.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace host {

struct RequestForm
{
    QString prefix;
    DataType dataType;
    int unitSize;      // bytes of data for one unit of the command's count
    int largestCount;  // units in one request
    int addressStep;   // how far one unit moves the address
    int reversedWidth; // data lie reversed in groups of this many bytes; 1: as in the controller
};

// Bytes on the line for one byte of memory or one object at the address.
int recordSize(const Address &address);

// Returns the form for an item that is no memory bit, for frames that have room for so many bytes of data.
RequestForm requestForm(const Item &item, int frameData);

// Returns the form for whole bytes of an area that has bits.
RequestForm bytesForm(const Area &area, int frameData);

CommunicatorCommand makeCommand(DataType dataType, const QString &address, int count);

// Returns the command for all values of an item with a raw address.
CommunicatorCommand rawCommand(const Item &item);

// In how many bytes the values of an item with a raw address are reversed: a driver hands words and double
// words over least significant byte first.
int rawReversedWidth(const Item &item);

// Returns the commands for so many units from a number on, in the order of their addresses.
QList<CommunicatorCommand> splitCommands(const RequestForm &form, int number, int count);

// Reverses every group of so many bytes, which turns the driver's order into the controller's, and back.
QByteArray byteSwapped(QByteArray data, int width);

} // namespace host

#endif
