// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/line/server.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace sim {

Server::Server(Line &line_, Simulator &simulator_)
    : line(line_), simulator(simulator_), startTime(simulator.now())
{
    sinceStart.start();
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    connect(&timer, &QTimer::timeout, this, &Server::keepTime);
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
    const std::optional<Time> due = simulator.nextDue();
    if (!due)
        return timer.stop();
    // Rounded down, the timer would fire before the time has come, and again and again until it has.
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(*due - simulator.now());
    timer.start(std::max(wait, std::chrono::milliseconds(0)));
}

} // namespace sim
