// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What can go wrong in an exchange, one row each, whatever is read or written.

#ifndef TESTS_FAULTS_H
#define TESTS_FAULTS_H

#include <QByteArray>
#include <QList>
#include <QString>

class ScriptedPort;

// One way in which the line fails the driver: what comes instead of the acknowledgement or, when that
// is good, instead of the answer.
struct LineFault
{
    QByteArray name;
    QByteArray acknowledgement;
    QByteArray answer;
    QString text;
};

// All of them, in an exchange that would else end with this item in answer to this reference.
QList<LineFault> lineFaults(const QString &item, int reference);

// Adds an attempt that fails so to the port's script.
void addAttempt(ScriptedPort &port, const LineFault &fault);

// One way in which the header of an answer to reference 1 is not what was asked for.
struct HeaderFault
{
    const char *name;
    int offset;
    int value;
};

QList<HeaderFault> headerFaults();

// One reason of the controller to refuse an item.
struct Refusal
{
    int code;
    const char *text;
};

QList<Refusal> refusals();

#endif
