// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/line/server.h"

#include <algorithm>

namespace sim {

Server::Server(Line &line, Simulator &simulator)
    : m_line(line), m_simulator(simulator), m_start(simulator.now())
{
    m_elapsed.start();
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &Server::keepTime);
    connect(&m_line, &Line::received, this, &Server::take);
}

void Server::take(const QByteArray &bytes)
{
    keepTime();
    const auto *data = reinterpret_cast<const uint8_t *>(bytes.constData());
    send(m_simulator.feed(data, static_cast<size_t>(bytes.size())));
    setTimer();
}

void Server::keepTime()
{
    send(m_simulator.advanceTo(m_start + Time(m_elapsed.nsecsElapsed())));
    setTimer();
}

void Server::send(const Bytes &bytes)
{
    if (!bytes.empty())
        m_line.send(bytes);
}

void Server::setTimer()
{
    const std::optional<Time> due = m_simulator.nextDue();
    if (!due)
        return m_timer.stop();
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(*due - m_simulator.now());
    m_timer.start(std::max(wait, std::chrono::milliseconds(0)));
}

} // namespace sim
