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

class DriverS7_200_PPI;
class ScriptedPort;
struct Sample;

// The result of a write that was taken.
const char kTaken[] = "taken";

struct Outcome
{
    QString result; // a read's data, hex; kTaken or nothing for a write
    bool failed;    // what the driver says afterwards
    QString reason;
    QStringList texts;  // of the log lines
    QList<int> numbers; // source lines that the log lines carry
};

// One call of the driver: its result.
QString resultOf(DriverS7_200_PPI &driver, ScriptedPort &port, const Sample &sample);

// A call of a new driver, over a port with this script or to a controller that acknowledges the request
// and then answers so.
Outcome outcomeOf(const Sample &sample, ScriptedPort &port);
Outcome outcomeOf(const Sample &sample, const QByteArray &answer);
Outcome outcomeOfRead(const CommunicatorCommand &command, ScriptedPort &port);
Outcome outcomeOfRead(const CommunicatorCommand &command, const QByteArray &answer);
Outcome outcomeOfWrite(const CommunicatorCommand &command, const QByteArray &data, ScriptedPort &port);
Outcome outcomeOfWrite(const CommunicatorCommand &command, const QByteArray &data, const QByteArray &answer);

// The 14 bytes of the read's request that name what is read, hex.
QString askedFor(const CommunicatorCommand &command);

// The write's request frame; empty when none is sent.
QByteArray requestOf(const CommunicatorCommand &command, const QByteArray &data);

// The PDU reference of a request frame, hex.
QString referenceOf(const QByteArray &request);

// The text count times: a log with as many lines of it.
QStringList copies(const QString &text, int count);

// How many different numbers there are among them.
int distinct(const QList<int> &numbers);

#endif
