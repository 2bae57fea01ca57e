// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What one read makes of one answer of the controller.

#ifndef TESTS_OUTCOME_H
#define TESTS_OUTCOME_H

#include "communicator_command.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

class ScriptedPort;

struct Outcome
{
    QString data; // the result, hex
    bool failed;  // what the driver says afterwards
    QString reason;
    QStringList texts;  // of the log lines
    QList<int> numbers; // source lines that the log lines carry
};

// A read by a new driver, over a port with this script or from a controller that acknowledges the
// request and then answers so.
Outcome outcomeOf(const CommunicatorCommand &command, ScriptedPort &port);
Outcome outcomeOf(const CommunicatorCommand &command, const QByteArray &answer);

// The 14 bytes of the read's request that name what is read, hex.
QString askedFor(const CommunicatorCommand &command);

#endif
