// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Commands as the host gives them to the driver. They may stand in a test's table.

#ifndef TESTS_COMMANDS_H
#define TESTS_COMMANDS_H

#include "communicator_command.h"

#include <QByteArray>
#include <QMetaType>

Q_DECLARE_METATYPE(CommunicatorCommand)

enum Operation { kRead, kWrite };

// The plural that names the type in a row of a test.
inline QByteArray typeName(int dataType)
{
    static const char *const names[] = {"bits",       "bytes", "words",    "double words",
                                        "quad words", "block", "bit block"};
    return names[dataType];
}

inline CommunicatorCommand command(int dataType, const QString &address, int count)
{
    CommunicatorCommand made;
    made.dataType = dataType;
    made.count = count;
    made.address = address;
    return made;
}

// "4 bytes of VB100", the name of a test's row.
inline QByteArray textOf(const CommunicatorCommand &command, const QByteArray &note = QByteArray())
{
    const QByteArray count = QByteArray::number(command.count);
    const QByteArray text = count + " " + typeName(command.dataType) + " of " + command.address.toLatin1();
    return note.isEmpty() ? text : text + ": " + note;
}

inline CommunicatorCommand bitCommand(const QString &address, int count)
{
    return command(kBits, address, count);
}

inline CommunicatorCommand byteCommand(const QString &address, int count)
{
    return command(kBytes, address, count);
}

inline CommunicatorCommand wordCommand(const QString &address, int count)
{
    return command(kWords, address, count);
}

inline CommunicatorCommand doubleWordCommand(const QString &address, int count)
{
    return command(kDoubleWords, address, count);
}

#endif
