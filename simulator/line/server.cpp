// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/line/server.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace sim {

Server::Server(Line &line_, Controllers &controllers_)
    : line(line_), controllers(controllers_), startTime(controllers_.now())
{
    sinceStart.start();
    connect(&timer, &PreciseTimer::timeout, this, &Server::keepTime);
    connect(&line, &Line::received, this, &Server::take);
}

void Server::take(const QByteArray &bytes)
{
    keepTime();
    const auto *data = reinterpret_cast<const uint8_t *>(bytes.constData());
    send(controllers.feed(data, static_cast<size_t>(bytes.size())));
    setTimer();
}

void Server::keepTime()
{
    send(controllers.advanceTo(startTime + Time(sinceStart.nsecsElapsed())));
    setTimer();
}

void Server::send(const Bytes &bytes)
{
    if (!bytes.empty())
        line.send(bytes);
}

void Server::setTimer()
{
    if (const std::optional<Time> due = controllers.nextDue())
        timer.start(*due - controllers.now());
    else
        timer.stop();
}

} // namespace sim
