// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A driver's command in one word more than its address: "bytes VB100*4".

#ifndef TESTS_HOST_SUPPORT_COMMAND_TEXT_H
#define TESTS_HOST_SUPPORT_COMMAND_TEXT_H

#include "communicator_command.h"

#include <QString>
#include <QStringList>

inline QString commandText(const CommunicatorCommand &command)
{
    const QStringList types = {"bits", "bytes", "words", "dwords"};
    return QString("%1 %2*%3").arg(types.at(command.dataType), command.address).arg(command.count);
}

#endif
