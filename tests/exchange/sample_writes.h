// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// One good write of every kind, for tests of what all of them have in common.

#ifndef TESTS_SAMPLE_WRITES_H
#define TESTS_SAMPLE_WRITES_H

#include "communicator_command.h"

#include <QByteArray>
#include <QList>
#include <QString>

struct SampleWrite
{
    const char *name;
    int dataType;
    const char *address;
    int count;
    const char *given; // what the host gives, hex
    const char *item;  // parameter block of the controller's answer

    CommunicatorCommand command() const;
    QByteArray data() const;
    bool isOfBits() const; // answered with a return code for each of several items
};

QList<SampleWrite> sampleWrites();

// The sample of that name.
SampleWrite sampleWrite(const QString &name);

#endif
