// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What one read or write makes of one answer of the controller.

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

// A write likewise.
struct WriteOutcome
{
    bool taken;  // the result
    bool failed; // what the driver says afterwards
    QString reason;
    QStringList texts;  // of the log lines
    QList<int> numbers; // source lines that the log lines carry
};

WriteOutcome outcomeOfWrite(const CommunicatorCommand &command, const QByteArray &data, ScriptedPort &port);
WriteOutcome outcomeOfWrite(const CommunicatorCommand &command, const QByteArray &data,
                            const QByteArray &answer);

// The 14 bytes of the read's request that name what is read, hex.
QString askedFor(const CommunicatorCommand &command);

// The write's request frame; empty when none is sent.
QByteArray requestOf(const CommunicatorCommand &command, const QByteArray &data);

// The text count times: a log with as many lines of it.
QStringList copies(const QString &text, int count);

// How many different numbers there are among them.
int distinct(const QList<int> &numbers);

#endif
