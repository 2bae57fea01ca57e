// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A driver's command in one word more than its address: "bytes VB100*4".

#ifndef TESTS_HOST_SUPPORT_COMMAND_TEXT_H
#define TESTS_HOST_SUPPORT_COMMAND_TEXT_H

#include "communicator_command.h"

#include <QHash>
#include <QString>

inline QString commandText(const CommunicatorCommand &command)
{
    static const QHash<int, QString> types = {
        {kBits, "bits"}, {kBytes, "bytes"}, {kWords, "words"}, {kDoubleWords, "dwords"}};
    return QString("%1 %2*%3").arg(types.value(command.dataType, "?"), command.address).arg(command.count);
}

#endif
