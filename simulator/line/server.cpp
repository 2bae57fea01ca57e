// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/line/server.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace sim {

Server::Server(Line &line_, Simulator &simulator_)
    : line(line_), simulator(simulator_), startTime(simulator.now())
{
    sinceStart.start();
    connect(&timer, &PreciseTimer::timeout, this, &Server::keepTime);
    connect(&line, &Line::received, this, &Server::take);
}

void Server::take(const QByteArray &bytes)
{
    keepTime();
    const auto *data = reinterpret_cast<const uint8_t *>(bytes.constData());
    send(simulator.feed(data, static_cast<size_t>(bytes.size())));
    setTimer();
}

void Server::keepTime()
{
    send(simulator.advanceTo(startTime + Time(sinceStart.nsecsElapsed())));
    setTimer();
}

void Server::send(const Bytes &bytes)
{
    if (!bytes.empty())
        line.send(bytes);
}

void Server::setTimer()
{
    if (const std::optional<Time> due = simulator.nextDue())
        timer.start(*due - simulator.now());
    else
        timer.stop();
}

} // namespace sim
