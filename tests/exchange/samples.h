// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// One good read and one good write of every kind, for tests of what all of them have in common.

#ifndef TESTS_SAMPLES_H
#define TESTS_SAMPLES_H

#include "commands.h"
#include "communicator_command.h"

#include <QByteArray>
#include <QList>
#include <QString>

struct Sample
{
    Operation operation;
    int dataType;
    const char *address;
    int count;
    const char *given;         // what the host gives for a write, hex
    const char *item;          // parameter block and data of the controller's answer
    const char *result;        // what the host gets, as Outcome has it
    const char *invalidHeader; // the reason recorded for an answer to another request
    bool isTraced;             // one trace line before the answer is decoded

    QByteArray name() const; // "read bytes of VB100"
    CommunicatorCommand command() const;
    QByteArray data() const;
    bool isBitWrite() const; // answered with a return code for each of several items
};

QList<Sample> samples();

// The sample of that name.
Sample sample(const QString &name);

#endif
