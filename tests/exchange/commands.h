// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Commands as the host gives them to the driver.

#ifndef TESTS_COMMANDS_H
#define TESTS_COMMANDS_H

#include "communicator_command.h"

enum DataType { kBit = 0, kByte = 1, kWord = 2, kDoubleWord = 3, kQuadWord = 4, kBlock = 5, kBitBlock = 6 };

inline CommunicatorCommand command(int dataType, const QString &address, int count)
{
    CommunicatorCommand made;
    made.dataType = dataType;
    made.count = count;
    made.address = address;
    return made;
}

inline CommunicatorCommand bitCommand(const QString &address, int count)
{
    return command(kBit, address, count);
}

inline CommunicatorCommand byteCommand(const QString &address, int count)
{
    return command(kByte, address, count);
}

inline CommunicatorCommand wordCommand(const QString &address, int count)
{
    return command(kWord, address, count);
}

inline CommunicatorCommand doubleWordCommand(const QString &address, int count)
{
    return command(kDoubleWord, address, count);
}

#endif
