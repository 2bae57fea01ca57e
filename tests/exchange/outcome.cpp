// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "outcome.h"

#include "answer.h"
#include "hex.h"
#include "log_capture.h"
#include "samples.h"
#include "scripted_port.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"

namespace {

QString resultOfRead(DriverS7_200_PPI &driver, ScriptedPort &port, const CommunicatorCommand &command)
{
    return hex(driver.read(&port, command));
}

QString resultOfWrite(DriverS7_200_PPI &driver, ScriptedPort &port, const CommunicatorCommand &command,
                      const QByteArray &data)
{
    return driver.write(&port, command, data) != 0 ? QString(kTaken) : QString();
}

// What a call leaves behind.
Outcome outcome(const QString &result, DriverS7_200_PPI &driver, const LogCapture &log)
{
    const Outcome outcome = {result, driver.hasError(), driver.getLastError(), log.texts(),
                             log.lineNumbers()};
    return outcome;
}

} // namespace

QString resultOf(DriverS7_200_PPI &driver, ScriptedPort &port, const Sample &sample)
{
    return sample.operation == kRead ? resultOfRead(driver, port, sample.command())
                                     : resultOfWrite(driver, port, sample.command(), sample.data());
}

Outcome outcomeOf(const Sample &sample, ScriptedPort &port)
{
    return sample.operation == kRead ? outcomeOfRead(sample.command(), port)
                                     : outcomeOfWrite(sample.command(), sample.data(), port);
}

Outcome outcomeOf(const Sample &sample, const QByteArray &answer)
{
    ScriptedPort port;
    port.serves(answer);
    return outcomeOf(sample, port);
}

Outcome outcomeOfRead(const CommunicatorCommand &command, ScriptedPort &port)
{
    DriverS7_200_PPI driver;
    LogCapture log;
    const QString result = resultOfRead(driver, port, command);
    return outcome(result, driver, log);
}

Outcome outcomeOfRead(const CommunicatorCommand &command, const QByteArray &answer)
{
    ScriptedPort port;
    port.serves(answer);
    return outcomeOfRead(command, port);
}

Outcome outcomeOfWrite(const CommunicatorCommand &command, const QByteArray &data, ScriptedPort &port)
{
    DriverS7_200_PPI driver;
    LogCapture log;
    const QString result = resultOfWrite(driver, port, command, data);
    return outcome(result, driver, log);
}

Outcome outcomeOfWrite(const CommunicatorCommand &command, const QByteArray &data, const QByteArray &answer)
{
    ScriptedPort port;
    port.serves(answer);
    return outcomeOfWrite(command, data, port);
}

QString askedFor(const CommunicatorCommand &command)
{
    const int headerEnd = 17;
    const int blockSize = 14;
    ScriptedPort port;
    port.expectsRequest();
    outcomeOfRead(command, port);
    return hex(port.frames().value(0).mid(headerEnd, blockSize));
}

QByteArray requestOf(const CommunicatorCommand &command, const QByteArray &data)
{
    ScriptedPort port;
    port.expectsRequest();
    outcomeOfWrite(command, data, port);
    return port.frames().value(0);
}

QString referenceOf(const QByteArray &request)
{
    return hex(request.mid(Answer::kReference, 2));
}

QStringList copies(const QString &text, int count)
{
    QStringList list;
    for (int i = 0; i < count; ++i)
        list += text;
    return list;
}

int distinct(const QList<int> &numbers)
{
    QList<int> seen;
    for (int i = 0; i < int(numbers.size()); ++i) {
        if (!seen.contains(numbers.at(i)))
            seen += numbers.at(i);
    }
    return int(seen.size());
}
