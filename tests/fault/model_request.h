// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The frames that the model of the driver expects on the line.

#ifndef TESTS_FAULT_MODEL_REQUEST_H
#define TESTS_FAULT_MODEL_REQUEST_H

#include "communicator_command.h"
#include "model_address.h"

#include <QByteArray>

// The numbers that every request of one attempt carries.
struct ModelRequestHead
{
    int station;
    int reference;
};

QByteArray modelPoll(int station);

// Element kinds of objects as the line names them.
int modelTransportSize(const ModelAddress &address);

QByteArray modelReadFrame(const ModelRequestHead &head, const ModelAddress &address, int transportSize,
                          qint64 count, quint32 place);

// data as the host gives them.
QByteArray modelMemoryWriteFrame(const ModelRequestHead &head, const ModelAddress &address,
                                 const QByteArray &data);
QByteArray modelObjectWriteFrame(const ModelRequestHead &head, const ModelAddress &address,
                                 const QByteArray &data);
QByteArray modelBitWriteFrame(const ModelRequestHead &head, const ModelAddress &address,
                              const QByteArray &data);

#endif
