// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "communicator_command.h"

CommunicatorCommand::CommunicatorCommand() : linkId(0), tagId(0), dataType(kBits), count(0) {}

bool isBitCommand(const CommunicatorCommand &command)
{
    return command.dataType == kBits;
}

bool isByteCommand(const CommunicatorCommand &command)
{
    return command.dataType == kBytes;
}

bool isWordCommand(const CommunicatorCommand &command)
{
    return command.dataType == kWords;
}

bool isDoubleWordCommand(const CommunicatorCommand &command)
{
    return command.dataType == kDoubleWords;
}

bool isBlockCommand(const CommunicatorCommand &command)
{
    return command.dataType == kBlock;
}
