// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "scene.h"

#include "driver_interface.h"
#include "hex.h"
#include "log_capture.h"
#include "model.h"

#include <QScopedPointer>

namespace {

template <typename Player> Outcome outcomeOf(Player &player, FaultPort &port, const HostRequest &request)
{
    LogCapture log;
    const int sendsBefore = port.sends();
    Outcome outcome = Outcome();
    if (request.isWrite)
        outcome.isWritten = player.write(&port, request.command, request.data) != 0;
    else
        outcome.data = player.read(&port, request.command);
    outcome.failed = player.hasError();
    outcome.reason = player.getLastError();
    outcome.log = log.texts();
    outcome.sends = port.sends() - sendsBefore;
    return outcome;
}

template <typename Player> Record play(Player &player, const Scene &scene, Controller &controller)
{
    FaultPort port(controller, scene.port);
    Record record;
    for (int i = 0; i < int(scene.requests.size()); ++i) {
        if (i == scene.disturbed)
            port.setFaults(scene.lineFaults, scene.callFaults);
        else
            port.setFaults(QList<LineFault>(), QList<CallFault>());
        controller.nextRequest();
        record.outcomes += outcomeOf(player, port, scene.requests.at(i));
    }
    record.calls = port.calls();
    record.strikes = port.strikes();
    return record;
}

bool isSame(const Outcome &a, const Outcome &b)
{
    const bool isSameReason = a.reason == b.reason && a.reason.isNull() == b.reason.isNull();
    return a.data == b.data && a.isWritten == b.isWritten && a.failed == b.failed && isSameReason &&
           a.log == b.log;
}

QString firstDifference(const QList<QByteArray> &callsOfDriver, const QList<QByteArray> &callsOfModel)
{
    int call = 0;
    while (callsOfDriver.value(call) == callsOfModel.value(call))
        ++call;
    return QString::fromLatin1("call %1\n  driver: %2\n  model:  %3\n")
        .arg(call + 1)
        .arg(QString::fromLatin1(callsOfDriver.value(call)))
        .arg(QString::fromLatin1(callsOfModel.value(call)));
}

QString toString(const HostRequest &request)
{
    return QString::fromLatin1("%1 \"%2\" type %3 count %4 data %5")
        .arg(QLatin1String(request.isWrite ? "write" : "read"))
        .arg(request.command.address)
        .arg(request.command.dataType)
        .arg(request.command.count)
        .arg(hex(request.data));
}

} // namespace

Record playTo(DriverInterface &driver, const Scene &scene, Controller &controller)
{
    return play(driver, scene, controller);
}

Record playTo(Model &model, const Scene &scene, Controller &controller)
{
    return play(model, scene, controller);
}

Record playToDriver(const Scene &scene, Controller &controller)
{
    QScopedPointer<DriverInterface> driver(CreateDriver());
    return play(*driver, scene, controller);
}

Record playToModel(const Scene &scene, Controller &controller)
{
    Model model;
    return play(model, scene, controller);
}

Comparison compared(const Scene &scene)
{
    CannedController controllerOfDriver(scene.port.station, scene.replies);
    CannedController controllerOfModel(scene.port.station, scene.replies);
    return compared(scene, playToDriver(scene, controllerOfDriver), playToModel(scene, controllerOfModel));
}

Comparison compared(const Scene &scene, const Record &driver, const Record &model)
{
    QString text;
    for (int i = 0; i < int(scene.requests.size()); ++i) {
        if (!isSame(driver.outcomes.at(i), model.outcomes.at(i)))
            text += QString::fromLatin1("request %1\n  driver: %2\n  model:  %3\n")
                        .arg(i + 1)
                        .arg(toString(driver.outcomes.at(i)))
                        .arg(toString(model.outcomes.at(i)));
    }
    if (driver.calls != model.calls)
        text += firstDifference(driver.calls.split('\n'), model.calls.split('\n'));
    if (!text.isEmpty())
        text += toString(scene);
    const Comparison comparison = {driver, text};
    return comparison;
}

QString toString(const Scene &scene)
{
    QString text = QString::fromLatin1("station %1, retries %2, delay %3, option 12 purges: %4\n")
                       .arg(scene.port.station)
                       .arg(scene.port.retries)
                       .arg(scene.port.delay)
                       .arg(scene.port.purges);
    for (int i = 0; i < int(scene.requests.size()); ++i)
        text += toString(scene.requests.at(i)) + QLatin1Char('\n');
    for (int i = 0; i < int(scene.replies.size()); ++i)
        text += QString::fromLatin1("reply: item %1, errors %2, refusal %3\n")
                    .arg(hex(scene.replies.at(i).item))
                    .arg(scene.replies.at(i).errors, 4, 16, QLatin1Char('0'))
                    .arg(scene.replies.at(i).refusal);
    for (int i = 0; i < int(scene.lineFaults.size()); ++i)
        text += toString(scene.lineFaults.at(i)) + QLatin1Char('\n');
    for (int i = 0; i < int(scene.callFaults.size()); ++i)
        text += toString(scene.callFaults.at(i)) + QLatin1Char('\n');
    return text;
}

QString toString(const Outcome &outcome)
{
    return QString::fromLatin1("data %1, written %2, failed %3, reason %4, log [%5]")
        .arg(hex(outcome.data))
        .arg(outcome.isWritten)
        .arg(outcome.failed)
        .arg(outcome.reason.isNull() ? QString::fromLatin1("null")
                                     : QLatin1Char('"') + outcome.reason + QLatin1Char('"'))
        .arg(outcome.log.join(QLatin1String("|")));
}
