// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "communicator_command.h"

CommunicatorCommand::CommunicatorCommand() : linkId(0), tagId(0), dataType(0), count(0) {}

bool isBitCommand(const CommunicatorCommand &command)
{
    return command.dataType == 0;
}

bool isByteCommand(const CommunicatorCommand &command)
{
    return command.dataType == 1;
}

bool isWordCommand(const CommunicatorCommand &command)
{
    return command.dataType == 2;
}

bool isDoubleWordCommand(const CommunicatorCommand &command)
{
    return command.dataType == 3;
}

bool isBlockCommand(const CommunicatorCommand &command)
{
    return command.dataType == 5;
}
