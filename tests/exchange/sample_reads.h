// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// One good read of every kind, for tests of what all of them have in common.

#ifndef TESTS_SAMPLE_READS_H
#define TESTS_SAMPLE_READS_H

#include "communicator_command.h"

#include <QList>
#include <QString>

struct SampleRead
{
    const char *name;
    int dataType;
    const char *address;
    int count;
    const char *item;          // parameter block and data of the controller's answer
    const char *result;        // what the host gets
    const char *invalidHeader; // the reason recorded for an answer to another request
    bool isTraced;             // one trace line before the answer is decoded

    CommunicatorCommand command() const;
};

QList<SampleRead> sampleReads();

// The sample of that name.
SampleRead sampleRead(const QString &name);

#endif
