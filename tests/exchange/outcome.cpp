// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "outcome.h"

#include "hex.h"
#include "log_capture.h"
#include "scripted_port.h"
#include "simatic_s7_200_ppi/s7_200_ppi.h"

Outcome outcomeOf(const CommunicatorCommand &command, ScriptedPort &port)
{
    DriverS7_200_PPI driver;
    LogCapture log;
    const QString data = hex(driver.read(&port, command));
    const Outcome outcome = {data, driver.hasError(), driver.getLastError(), log.texts(), log.lineNumbers()};
    return outcome;
}

Outcome outcomeOf(const CommunicatorCommand &command, const QByteArray &answer)
{
    ScriptedPort port;
    port.serves(answer);
    return outcomeOf(command, port);
}

WriteOutcome outcomeOfWrite(const CommunicatorCommand &command, const QByteArray &data, ScriptedPort &port)
{
    DriverS7_200_PPI driver;
    LogCapture log;
    const bool taken = driver.write(&port, command, data) != 0;
    const WriteOutcome outcome = {taken, driver.hasError(), driver.getLastError(), log.texts(),
                                  log.lineNumbers()};
    return outcome;
}

WriteOutcome outcomeOfWrite(const CommunicatorCommand &command, const QByteArray &data,
                            const QByteArray &answer)
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
    outcomeOf(command, port);
    return hex(port.frames().value(0).mid(headerEnd, blockSize));
}

QByteArray requestOf(const CommunicatorCommand &command, const QByteArray &data)
{
    ScriptedPort port;
    port.expectsRequest();
    outcomeOfWrite(command, data, port);
    return port.frames().value(0);
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
