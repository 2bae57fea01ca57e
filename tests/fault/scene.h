// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a host asks for, over which port, and what goes wrong meanwhile. The same scene can be played to
// the driver and to the model of it; whatever differs is a fault of one of them.

#ifndef TESTS_FAULT_SCENE_H
#define TESTS_FAULT_SCENE_H

#include "communicator_command.h"
#include "controller.h"
#include "fault.h"
#include "fault_port.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

class DriverInterface;
class Model;

struct HostRequest
{
    bool isWrite;
    CommunicatorCommand command;
    QByteArray data; // of a write
};

struct Scene
{
    Scene() : disturbed(0) {}

    PortSettings port;
    QList<HostRequest> requests; // one after the other
    QList<Reply> replies;        // to them

    // While this request lasts, the first by default. What is late stays on its way.
    int disturbed;
    QList<LineFault> lineFaults;
    QList<CallFault> callFaults;
};

struct Outcome
{
    QByteArray data; // of a read
    bool isWritten;  // of a write
    bool failed;
    QString reason;
    QStringList log; // texts of the lines
    int sends;

    bool isReadAs(const QByteArray &expected) const { return !failed && data == expected; }
};

struct Record
{
    QList<Outcome> outcomes; // of each request
    QByteArray calls;        // of the port, one line each
    Strikes strikes;
};

// To this driver, and to this model, which may have played others before.
Record playTo(DriverInterface &driver, const Scene &scene, Controller &controller);
Record playTo(Model &model, const Scene &scene, Controller &controller);

// To a new driver, and to a new model. The two controllers must be alike.
Record playToDriver(const Scene &scene, Controller &controller);
Record playToModel(const Scene &scene, Controller &controller);

// A scene played to both.
struct Comparison
{
    Record driver;
    QString difference; // what the model did otherwise, and the scene; empty when nothing
};

Comparison compared(const Scene &scene);
Comparison compared(const Scene &scene, const Record &driver, const Record &model);

QString toString(const Scene &scene);
QString toString(const Outcome &outcome);

#endif
