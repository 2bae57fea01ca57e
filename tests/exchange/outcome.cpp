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

QString askedFor(const CommunicatorCommand &command)
{
    const int headerEnd = 17;
    const int blockSize = 14;
    ScriptedPort port;
    port.expectsRequest();
    outcomeOf(command, port);
    return hex(port.frames().value(0).mid(headerEnd, blockSize));
}
