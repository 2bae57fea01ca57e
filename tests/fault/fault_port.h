// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A port whose line and whose calls go wrong as told, in virtual time: the driver's pauses and waiting
// for bytes that do not come advance its clock, nothing else does. It writes down every call in order.
//
// A program that uses it also compiles fake_sleep.cpp. One port exists at a time.

#ifndef TESTS_FAULT_FAULT_PORT_H
#define TESTS_FAULT_FAULT_PORT_H

#include "abstract_device_interface.h"
#include "fault.h"

#include <QByteArray>
#include <QList>
#include <QVector>
#include <QtGlobal>

class Controller;

struct PortSettings
{
    PortSettings() : station(2), retries(0), delay(0), timeout(500), purges(true) {}

    int station;
    int retries;
    int delay;   // milliseconds, before every attempt
    int timeout; // milliseconds, of every receive
    bool purges; // option 12 throws away what has arrived
};

class FaultPort : public AbstractDeviceInterface
{
public:
    // Milliseconds that the controller takes to reply.
    enum { kReactionTime = 3 };

    FaultPort(Controller &farEnd, const PortSettings &portSettings);
    ~FaultPort() override;

    // From now on; replies and calls count from now on, too.
    void setFaults(const QList<LineFault> &faultsOfLine, const QList<CallFault> &faultsOfCalls);

    // One line per call, pauses among them.
    QByteArray calls() const { return writtenDown; }
    int sends() const { return totalSends; }
    const Strikes &strikes() const { return struck; }

    int receive(unsigned char *buffer, int maxLength) override;
    int send(const unsigned char *data, int length) override;
    bool setOption(int key, const QVariant &value) override;
    int retry() override;
    int stationId() override { return settings.station; }
    int delay() override;

private:
    struct Arrival
    {
        qint64 time;
        char value;
    };

    FaultPort(const FaultPort &);
    FaultPort &operator=(const FaultPort &);

    const CallFault *faultOf(Call call, int number);
    int receiveFaulty(unsigned char *buffer, int maxLength, Failure failure);
    int collectHalf(unsigned char *buffer, int maxLength);
    int collect(unsigned char *buffer, int maxLength);
    int sendFaulty(const QByteArray &frame, Failure failure);
    void transmit(const QByteArray &frame);
    void schedule(const LateByte &byte);
    void note(const char *what, qint64 argument);
    static void notePause(qint64 nanoseconds);

    Controller &controller;
    PortSettings settings;
    QList<LineFault> lineFaults;
    QList<CallFault> callFaults;
    int replies;
    int receives;
    int sendCalls;
    int totalSends;
    qint64 now;                // milliseconds
    QVector<Arrival> arrivals; // by time
    QByteArray writtenDown;
    Strikes struck;
};

#endif
