// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A model of the whole driver: what every read and write must send, wait for, answer, record and log,
// written a second time and from the rules alone. Slow and plain; a test plays the same scene to the
// driver and to it and compares.

#ifndef TESTS_FAULT_MODEL_H
#define TESTS_FAULT_MODEL_H

#include "abstract_device_interface.h"
#include "communicator_command.h"
#include "model_address.h"

#include <QByteArray>
#include <QString>

class ModelAnswer;

class Model
{
public:
    Model();

    QByteArray read(AbstractDeviceInterface *port, const CommunicatorCommand &command);
    int write(AbstractDeviceInterface *port, const CommunicatorCommand &command, const QByteArray &data);
    bool hasError() const { return isFailed; }
    QString getLastError() const { return reason; }

private:
    // What a read asks for, and how it is judged where the kinds of read differ.
    struct ReadRules
    {
        int transportSize;
        qint64 count;
        qint64 resultSize; // below 0: as many bytes as came
        const char *headerText;
        const char *emptyText;
        bool isCodeLogged;
        bool isEmptyLogged;
    };

    ReadRules memoryRules(const CommunicatorCommand &command, const ModelAddress &address) const;
    ReadRules objectRules(const CommunicatorCommand &command, const ModelAddress &address) const;

    QByteArray readOnce(const CommunicatorCommand &command);
    QByteArray readBits(const CommunicatorCommand &command, const ModelAddress &address);
    QByteArray readMemoryBits(const CommunicatorCommand &command, const ModelAddress &address);
    QByteArray readStatuses(const CommunicatorCommand &command, const ModelAddress &address);
    QByteArray readMemory(const ReadRules &rules, const ModelAddress &address);
    QByteArray readFastCounters(const ReadRules &rules, const ModelAddress &address);
    QByteArray readRecords(const ReadRules &rules, const ModelAddress &address);
    QByteArray fitted(const QByteArray &data, qint64 size) const;

    bool writeOnce(const CommunicatorCommand &command, const QByteArray &data);
    bool writeBits(const CommunicatorCommand &command, const QByteArray &data);
    bool writeItem(const QByteArray &frame);
    bool refuse(const CommunicatorCommand &command);

    bool exchange(const QByteArray &request, const char *headerText, QByteArray &buffer);
    bool isRequestTaken(const QByteArray &request);
    bool isAnswered(QByteArray &buffer);
    void sendFrame(const QByteArray &frame);
    qint64 receive(QByteArray &buffer, int place, int size);
    bool askRecords(const ReadRules &rules, const ModelAddress &address, QByteArray &buffer);
    bool isRecordListWhole(const ModelAnswer &answer, const QByteArray &records);

    bool begin(AbstractDeviceInterface *currentPort, const CommunicatorCommand &command);
    int nextReference();
    int station() const { return port->stationId() & 0xff; }
    bool fail(const QString &text);
    bool failSilently(const QString &text);
    void log(const QString &text) const;

    AbstractDeviceInterface *port; // of the call under way
    bool isFailed;
    QString reason;
    int reference;
};

#endif
